#pragma once

#include "SnapshotMount/SnapshotMount.h"

/// Mounts with their registry in a destination's folder Mounts, on a machine whose tools do nothing but say
/// that they did.
namespace marrowbox::test {

/// Mounts the latest snapshot of the generated unit, and ejects it again.
void mountAndEject(const fs::path& destination);

/// What the next start of the program makes of what it finds.
SnapshotMount::Reconciliation reconcileMounts(const fs::path& destination);

MountRegistryFolder mountRegistry(const fs::path& destination);

} // namespace marrowbox::test
