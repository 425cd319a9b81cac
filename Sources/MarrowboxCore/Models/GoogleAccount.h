#pragma once

#include <boost/describe/class.hpp>
#include <string>

namespace marrowbox {

/// A connected Google account.
struct GoogleAccount {
    std::string id;            ///< The account's identifier at Google.
    std::string email;         ///< Its address.
    std::string name;          ///< Display name.
    bool canSendEmail = false; ///< Whether the sign-in granted sending mail.

    friend bool operator==(const GoogleAccount&, const GoogleAccount&) = default;
};

BOOST_DESCRIBE_STRUCT(GoogleAccount, (), (id, email, name, canSendEmail))

} // namespace marrowbox
