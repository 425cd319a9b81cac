#pragma once

#include <array>
#include <boost/describe/enum.hpp>
#include <string>

namespace marrowbox {

/// When runs of a unit are mailed.
enum class NotificationPolicy { all, daily, off };
BOOST_DESCRIBE_ENUM(NotificationPolicy, all, daily, off)

/// In the order of the picker.
inline constexpr std::array allNotificationPolicies = {NotificationPolicy::all, NotificationPolicy::daily,
                                                       NotificationPolicy::off};

/// The text of the picker.
std::string title(NotificationPolicy policy);

/// The sentence that explains it.
std::string detail(NotificationPolicy policy);

} // namespace marrowbox
