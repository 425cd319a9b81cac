#pragma once

#include "Models/EmailSettings.h"
#include "Models/GoogleAccount.h"

#include <optional>

/// What the email settings become without anybody choosing.
namespace marrowbox::EmailDefaults {

/// Which account a newly connected one is.
enum class AccountOrder { first, later };

/// The settings with Gmail as the sender, once the very first account is connected with leave to send. Absent
/// when nothing changes: a choice of the user is never overwritten.
std::optional<EmailSettings> applying(const EmailSettings& settings, const GoogleAccount& connecting,
                                      AccountOrder order);

} // namespace marrowbox::EmailDefaults
