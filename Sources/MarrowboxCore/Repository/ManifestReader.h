#pragma once

#include "Models/JSONSharing.h"
#include "Models/Snapshot.h"
#include "Platform/Descriptor.h"

#include <optional>
#include <span>

namespace marrowbox {

/// Reads manifests of which most entries are known beforehand: from the manifest that was read before, or
/// from the listing of the run. An entry whose text is byte by byte what this program writes for a known one
/// is that record, and is neither parsed nor made again. Whatever is written in any other way is parsed in
/// the ordinary way, with the ordinary failures. Not safe to share between threads.
class ManifestReader {
  public:
    /// The items of a listing that the entries may be of; of use when in the order of their paths. They must
    /// outlive the reader.
    explicit ManifestReader(std::span<const SourceEntry> listing) : listing_(listing) {}

    /// The entries that the next manifest may repeat, in the order of their paths, any number at one path.
    /// They must stay in place until it is read.
    void expect(std::span<const Shared<SnapshotEntry>> entries) { known_ = entries; }

    /// Throws what decoding throws.
    Snapshot read(const Descriptor& file);

  private:
    std::optional<Snapshot> readFamiliar(const Descriptor& file);

    std::span<const SourceEntry> listing_;
    std::span<const Shared<SnapshotEntry>> known_;
    JSONSharing sharing_;
};

} // namespace marrowbox
