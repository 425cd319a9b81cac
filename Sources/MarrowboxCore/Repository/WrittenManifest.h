#pragma once

#include "Models/JSONSharing.h"
#include "Models/Snapshot.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The form in which this program writes a manifest, as far as a reader makes use of it. A text that departs
/// from it is read in the ordinary way.
namespace marrowbox::WrittenManifest {

/// What closes the list of entries, and each of them.
inline constexpr std::string_view closing = "\n  ]";
inline constexpr std::string_view entryEnd = "\n    }";
/// No beginning is longer, and no rest behind the entries as long.
inline constexpr std::size_t longestHead = 512;
inline constexpr std::size_t longestRest = 4096;

/// The text up to the first entry; empty when it is not in this form.
std::string_view headOf(std::string_view text);

/// When the run completed, by the text's head; 0 when that is not in this form. For a guess alone.
double dateIn(std::string_view head);

/// What stands before an entry.
inline std::string_view separator(bool isFirst) {
    return isFirst ? "\n    " : ",\n    ";
}

/// The entry of a text that is one whole value, which is the same as in its place in the list. Absent when it
/// has to be read there.
std::optional<SnapshotEntry> entryOf(std::string_view text, JSONSharing& sharing);

/// The record without its entries, from all of the text but them, so that everything about the other members
/// is as it would be. Absent when the text has to be read as a whole.
std::optional<Snapshot> withoutEntries(std::string_view head, std::string_view rest);

} // namespace marrowbox::WrittenManifest
