#include "Models/EmailSettings.h"

#include "Models/BackupError.h"

namespace marrowbox {

std::optional<EmailProvider> JSONEnumeration<EmailProvider>::fromName(std::string_view name) {
    if (name == "disabled" || name == "mailgun")
        return EmailProvider::disabled;
    if (name == "gmail")
        return EmailProvider::gmail;
    throw BackupError("Unsupported email provider.");
}

} // namespace marrowbox
