#pragma once

#include <boost/describe/enum.hpp>

namespace marrowbox {

/// The colour that the user gave a unit.
enum class AccentTheme { blue, sage, teal, indigo, violet, coral, sunshine, graphite };
BOOST_DESCRIBE_ENUM(AccentTheme, blue, sage, teal, indigo, violet, coral, sunshine, graphite)

} // namespace marrowbox
