#pragma once

#include <cstdlib>

/// What the fuzz targets say with a program's end, since it is what the fuzzer sees.
namespace marrowbox::fuzz {

inline void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace marrowbox::fuzz
