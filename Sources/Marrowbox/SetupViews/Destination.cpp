#include "Marrowbox/SetupViews/Destination.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace marrowbox {

namespace {

/// Where Google's program for the Mac keeps its folders, and where a Linux desktop mounts an account's files.
constexpr auto drivePlaces =
    std::to_array<std::string_view>({"/Library/CloudStorage/GoogleDrive-", "/gvfs/google-drive:"});

} // namespace

std::filesystem::path withoutLinks(const std::filesystem::path& folder) {
    return std::filesystem::weakly_canonical(folder);
}

bool liesInGoogleDrive(const std::filesystem::path& folder) {
    const std::string path = folder.string();
    return std::ranges::any_of(drivePlaces,
                               [&](std::string_view place) { return path.find(place) != std::string::npos; });
}

} // namespace marrowbox
