#pragma once

#include "Models/EmailSettings.h"
#include "Models/GoogleAccount.h"

#include <functional>
#include <optional>
#include <span>
#include <string>

/// Whether email settings can work.
namespace marrowbox::EmailSettingsValidation {

/// Tells whether a stored credential for an account is at hand.
using CredentialAvailable = std::function<bool(const GoogleAccount&)>;

/// The sentence about the first thing that is wrong; absent when nothing is. Disabled settings are always
/// right.
std::optional<std::string> error(const EmailSettings& settings, std::span<const GoogleAccount> accounts,
                                 const CredentialAvailable& credentialAvailable);

/// Whether an edited form has something to save that can work.
bool canSave(const EmailSettings& draft, const EmailSettings& current,
             std::span<const GoogleAccount> accounts, const CredentialAvailable& credentialAvailable);

} // namespace marrowbox::EmailSettingsValidation
