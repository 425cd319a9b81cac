#pragma once

#include <boost/describe/enum.hpp>

namespace marrowbox {

/// When runs of a unit are mailed.
enum class NotificationPolicy { all, daily, off };
BOOST_DESCRIBE_ENUM(NotificationPolicy, all, daily, off)

} // namespace marrowbox
