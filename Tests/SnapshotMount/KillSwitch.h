#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace marrowbox::test {

/// Says of each system call that changes the disk, by its name and the path it is about, whether the process
/// ends right before it.
using KillRule = std::function<bool(std::string_view call, const std::string& path)>;

/// From now on the process ends, as by a power cut, before the first call for which the rule says yes. The
/// program's own calls are seen (the test program is linked so), those of the libraries are not. For a child
/// of a test.
void killBefore(KillRule rule);

} // namespace marrowbox::test
