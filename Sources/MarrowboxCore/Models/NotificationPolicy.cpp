#include "Models/NotificationPolicy.h"

namespace marrowbox {

std::string title(NotificationPolicy policy) {
    switch (policy) {
    case NotificationPolicy::all:
        return "All";
    case NotificationPolicy::daily:
        return "Daily";
    case NotificationPolicy::off:
        break;
    }
    return "Off";
}

std::string detail(NotificationPolicy policy) {
    switch (policy) {
    case NotificationPolicy::all:
        return "An email after every snapshot.";
    case NotificationPolicy::daily:
        return "One email covering every snapshot since the last summary, and never more than one a day.";
    case NotificationPolicy::off:
        break;
    }
    return "No email for this backup.";
}

} // namespace marrowbox
