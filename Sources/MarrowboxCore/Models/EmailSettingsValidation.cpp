#include "Models/EmailSettingsValidation.h"

#include "Models/EmailAddress.h"

#include <algorithm>

namespace marrowbox {

std::optional<std::string> EmailSettingsValidation::error(const EmailSettings& settings,
                                                          std::span<const GoogleAccount> accounts,
                                                          const CredentialAvailable& credentialAvailable) {
    if (settings.provider != EmailProvider::gmail)
        return std::nullopt;
    if (!isEmailAddress(settings.recipient))
        return "Enter a valid recipient email address.";
    const auto account = std::ranges::find(accounts, settings.accountID, &GoogleAccount::id);
    if (account == accounts.end())
        return "Choose a Google account for email summaries.";
    if (!account->canSendEmail)
        return "Reconnect this account and allow Gmail sending permission first.";
    if (!credentialAvailable(*account))
        return "Reconnect this Google account before enabling email summaries.";
    return std::nullopt;
}

bool EmailSettingsValidation::canSave(const EmailSettings& draft, const EmailSettings& current,
                                      std::span<const GoogleAccount> accounts,
                                      const CredentialAvailable& credentialAvailable) {
    return draft != current && !error(draft, accounts, credentialAvailable);
}

} // namespace marrowbox
