#pragma once

#include <cstddef>
#include <vector>

namespace marrowbox::test {

/// Whether MARROWBOX_EVERY_MOMENT in the environment asks for what takes too long for every change: a stop at
/// each moment there is, and not at some.
bool triesEveryMoment();

/// At most so many numbers from 1 to the last, spread evenly; a quarter of that in the slow builds that look
/// for faults of memory and threads. All of them where every moment is tried.
std::vector<int> spread(int last, int atMost);

/// By how much a loop over thousands of nearly equal cases goes on: 1, and more in those slow builds.
std::size_t stepOfManyCases();

} // namespace marrowbox::test
