#pragma once

#include <vector>

namespace marrowbox::test {

/// At most so many numbers from 1 to the last, spread evenly; a quarter of that in the slow builds that look
/// for faults of memory and threads.
std::vector<int> spread(int last, int atMost);

} // namespace marrowbox::test
