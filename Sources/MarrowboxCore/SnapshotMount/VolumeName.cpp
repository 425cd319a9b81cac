#include "SnapshotMount/VolumeName.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace marrowbox {

namespace {

constexpr std::size_t longestUnitName = 14;
/// Some thousands of years, in seconds. A manifest may name any number.
constexpr double furthest = 1e11;

/// What every file system and file browser shows as it is.
bool isUsable(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           byte == ' ' || byte == '_' || byte == '-';
}

std::string usablePart(std::string_view unitName) {
    std::string usable;
    for (const char byte : unitName)
        if (isUsable(byte) && usable.size() < longestUnitName)
            usable += byte;
    return usable;
}

} // namespace

LocalTime systemLocalTime() {
    return [](Date date) {
        const double seconds = std::floor(date.secondsSinceReference + referenceDateSince1970);
        const auto instant = static_cast<std::time_t>(std::clamp(seconds, -furthest, furthest));
        std::tm fields{};
        ::tzset(); // the user may have travelled since the program started
        ::localtime_r(&instant, &fields);
        return fields;
    };
}

std::string volumeName(std::string_view unitName, const std::tm& completedAt) {
    std::array<char, 16> stamp{};
    // Numbers only, so the locale has no say.
    const std::size_t length = std::strftime(stamp.data(), stamp.size(), "%m-%d %H%M", &completedAt);
    return "Marrowbox " + usablePart(unitName) + " " + std::string(stamp.data(), length);
}

} // namespace marrowbox
