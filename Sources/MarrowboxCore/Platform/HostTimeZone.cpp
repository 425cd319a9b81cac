#include "Platform/HostTimeZone.h"

#include <mutex>

namespace marrowbox {

std::unique_ptr<icu::TimeZone> hostTimeZone() {
    static std::mutex detecting; // the detection keeps its findings in globals without a lock
    const std::lock_guard lock(detecting);
    std::unique_ptr<icu::TimeZone> detected(icu::TimeZone::detectHostTimeZone());
    if (detected == nullptr || *detected == icu::TimeZone::getUnknown())
        detected.reset(icu::TimeZone::getGMT()->clone());
    return detected;
}

} // namespace marrowbox
