#include "Platform/Clock.h"

#include <chrono>

namespace marrowbox {

Clock systemClock() {
    return [] {
        const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
        return Date{std::chrono::duration<double>(since1970).count() - referenceDateSince1970};
    };
}

} // namespace marrowbox
