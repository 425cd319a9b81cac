#include "Support/Spread.h"

#include "Support/SanitizedBuild.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace marrowbox::test {

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
