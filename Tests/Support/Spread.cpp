#include "Support/Spread.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace marrowbox::test {

namespace {

#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

} // namespace

bool triesEveryMoment() {
    return std::getenv("MARROWBOX_EVERY_MOMENT") != nullptr;
}

std::vector<int> spread(int last, int atMost) {
    const int count = triesEveryMoment() ? last : std::min(last, isSanitized ? atMost / 4 : atMost);
    std::vector<int> numbers;
    for (int index = 0; index < count; ++index)
        numbers.push_back(1 + static_cast<int>(std::int64_t{index} * last / count));
    return numbers;
}

std::size_t stepOfManyCases() {
    return isSanitized ? 7 : 1;
}

} // namespace marrowbox::test
