#pragma once

#include "Models/JSONSharing.h"
#include "Models/Snapshot.h"
#include "Platform/Descriptor.h"
#include "Repository/KnownEntries.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace marrowbox {

/// Reads manifests of which most entries are known beforehand: from the manifest that was read before, or
/// from the listing of the run. An entry whose text is byte by byte what this program writes for a known one
/// is that record, and is neither parsed nor made again. Whatever is written in any other way is parsed in
/// the ordinary way, with the ordinary failures. Not safe to share between threads.
class ManifestReader {
  public:
    /// The items of a listing that the entries may be of; of use when in the order of their paths. They must
    /// outlive the reader.
    explicit ManifestReader(std::span<const SourceEntry> listing)
        : listing_(listing), lastCount_(listing.size()) {}

    /// A manifest, and what of it was not known.
    struct Reading {
        Snapshot snapshot;
        std::vector<Shared<SnapshotEntry>> fresh;
        /// Whether it has an entry at a path where nothing was known, or only the other of file and folder.
        bool hasNewPath = true;
    };
    /// Reads a manifest that may repeat known entries. Throws what decoding throws.
    Reading read(const Descriptor& file, const KnownEntries& known);

  private:
    std::optional<Reading> readFamiliar(const Descriptor& file, const KnownEntries& known);

    std::span<const SourceEntry> listing_;
    JSONSharing sharing_;
    std::size_t lastCount_ = 0; ///< Entries of the manifest before. Room for so many leaves nothing over.
};

} // namespace marrowbox
