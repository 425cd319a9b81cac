#pragma once

#include "Models/Snapshot.h"

#include <string>
#include <string_view>

namespace marrowbox::test {

/// A file as a source would report it, whose stored object holds this content. The id follows from the path.
SnapshotEntry file(std::string_view path, std::string_view content);
SnapshotEntry folder(std::string_view path);

/// Entries with every optional field present and absent, and with texts that need care.
Snapshot snapshotOfManyKinds();

} // namespace marrowbox::test
