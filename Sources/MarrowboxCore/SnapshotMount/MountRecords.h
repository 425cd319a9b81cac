#pragma once

#include "Models/Uuid.h"
#include "SnapshotMount/FileURL.h"

#include <boost/describe/class.hpp>
#include <boost/describe/enum.hpp>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace marrowbox {

/// How far a mount came, as it was last written down. No decision reads it back.
enum class MountPhase { preparing, attached };
BOOST_DESCRIBE_ENUM(MountPhase, preparing, attached)

/// One registered attempt to mount a snapshot: an entry of the registry, and the marker in its work folder.
struct MountEntry {
    Uuid id; ///< The snapshot's; at most one entry a snapshot.
    Uuid unitID;
    std::string displayName;       ///< The volume's name.
    FileURL workingDirectory;      ///< The work root and a fresh UUID.
    FileURL image;                 ///< The work folder and Snapshot.dmg.
    std::optional<FileURL> volume; ///< Only once it was attached.
    MountPhase phase = MountPhase::preparing;

    friend bool operator==(const MountEntry&, const MountEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(MountEntry, (), (id, unitID, displayName, workingDirectory, image, volume, phase))

/// All that mounts.json holds.
struct MountRegistry {
    std::int64_t version = 1;
    std::vector<MountEntry> entries;

    friend bool operator==(const MountRegistry&, const MountRegistry&) = default;
};
BOOST_DESCRIBE_STRUCT(MountRegistry, (), (version, entries))

/// The JSON of the registry and of the marker: compact, members in the order of the fields.
std::string encodeMountRegistry(const MountRegistry& registry);
std::string encodeMountMarker(const MountEntry& entry);

/// A snapshot that is browsable now.
struct MountedSnapshot {
    Uuid id; ///< The snapshot's.
    Uuid unitID;
    std::string displayName;
    fs::path volume; ///< The mount point.
    fs::path workingDirectory;

    friend bool operator==(const MountedSnapshot&, const MountedSnapshot&) = default;
};

/// The live mount of an entry, with the mount point that the system gives now.
MountedSnapshot mountedFrom(const MountEntry& entry, const fs::path& mountPoint);

/// What a reconciliation found.
struct MountReconciliation {
    std::vector<MountedSnapshot> mounted;
    std::optional<std::string> issue; ///< The first one, a finished sentence.
    /// Whether the list is the full truth of this moment. When it is not, the list is empty for that reason
    /// alone, and the caller keeps what it knows.
    bool isAuthoritative = false;

    friend bool operator==(const MountReconciliation&, const MountReconciliation&) = default;
};

} // namespace marrowbox

template <>
struct std::hash<marrowbox::MountedSnapshot> {
    std::size_t operator()(const marrowbox::MountedSnapshot& mounted) const noexcept;
};
