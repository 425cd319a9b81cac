#pragma once

#include "Models/JSONRules.h"

#include <boost/describe/class.hpp>
#include <boost/describe/enum.hpp>
#include <string>

namespace marrowbox {

/// How summaries are delivered.
enum class EmailProvider { disabled, gmail };
BOOST_DESCRIBE_ENUM(EmailProvider, disabled, gmail)

/// Where summaries go; one value for the whole application.
struct EmailSettings {
    EmailProvider provider = EmailProvider::disabled;
    std::string accountID; ///< The account that sends.
    std::string recipient;

    friend bool operator==(const EmailSettings&, const EmailSettings&) = default;
};

BOOST_DESCRIBE_STRUCT(EmailSettings, (), (provider, accountID, recipient))

template <>
struct JSONRules<EmailSettings> {
    static constexpr bool everyKeyMayBeMissing = true;
};

/// Knows the retired provider "mailgun", which reads as disabled, and throws BackupError "Unsupported email
/// provider." for every other unknown name.
template <>
struct JSONEnumeration<EmailProvider> {
    static std::optional<EmailProvider> fromName(std::string_view name);
};

} // namespace marrowbox
