#include "Models/NotificationDigest.h"

namespace marrowbox {

bool NotificationDigest::isDue(std::optional<Date> lastSentAt, Date now, double seconds) {
    return !lastSentAt || now - *lastSentAt >= seconds;
}

} // namespace marrowbox
