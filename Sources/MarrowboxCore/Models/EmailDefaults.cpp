#include "Models/EmailDefaults.h"

namespace marrowbox {

std::optional<EmailSettings> EmailDefaults::applying(const EmailSettings& settings,
                                                     const GoogleAccount& connecting, AccountOrder order) {
    if (order != AccountOrder::first || !connecting.canSendEmail)
        return std::nullopt;
    if (settings.provider != EmailProvider::disabled)
        return std::nullopt;
    return EmailSettings{.provider = EmailProvider::gmail,
                         .accountID = connecting.id,
                         .recipient = settings.recipient.empty() ? connecting.email : settings.recipient};
}

} // namespace marrowbox
