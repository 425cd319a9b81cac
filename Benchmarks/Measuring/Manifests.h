#pragma once

#include "Models/Snapshot.h"

#include <cstddef>

namespace marrowbox::bench {

/// A snapshot of so many files in folders of fifty, each with its own id, path, digest and object.
Snapshot manifest(std::size_t fileCount);

/// One file of such a snapshot.
SnapshotEntry manifestFile(std::size_t number);

/// A later snapshot in which about one file in a hundred has other content.
Snapshot laterManifest(const Snapshot& earlier, unsigned generation);

} // namespace marrowbox::bench
