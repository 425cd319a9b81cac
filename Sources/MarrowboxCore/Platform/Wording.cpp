#include "Platform/Wording.h"

#include <algorithm>
#include <array>

namespace marrowbox {

namespace {

constexpr auto table = std::to_array<Wording>({
    // Snapshots as volumes
    {"Could not prepare the read-only volume. Make sure your Mac has enough free space for the selected "
     "snapshot.",
     "Could not prepare the read-only volume. Make sure your computer has enough free space for the selected "
     "snapshot."},
    {"macOS could not mount the snapshot. You can still restore it to a folder.",
     "The system could not mount the snapshot. You can still restore it to a folder."},
    {"macOS returned ambiguous attach state.", "The system returned ambiguous attach state."},
    {"macOS disk-image state could not be inspected; temporary files were kept.",
     "The system’s disk-image state could not be inspected; temporary files were kept."},
    {"macOS returned ambiguous disk-image state.", "The system returned ambiguous disk-image state."},
    {"macOS returned an incomplete disk-image inventory.",
     "The system returned an incomplete disk-image inventory."},
    {"macOS has not finished ejecting the snapshot. Its temporary files were kept safely.",
     "The system has not finished ejecting the snapshot. Its temporary files were kept safely."},
});

} // namespace

std::span<const Wording> wordings() {
    return table;
}

std::string worded(std::string_view sentence, OperatingSystem system) {
    const auto found = std::ranges::find(table, sentence, &Wording::macOS);
    if (found == table.end() || system == OperatingSystem::macOS)
        return std::string(sentence);
    return std::string(found->linux);
}

} // namespace marrowbox
