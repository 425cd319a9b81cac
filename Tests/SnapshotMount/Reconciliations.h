#pragma once

#include "SnapshotMount/SnapshotMount.h"

#include <string>

namespace marrowbox::test {

/// Of mounts where there are none, and that is sure.
inline const SnapshotMount::Reconciliation nothingToTell{.isAuthoritative = true};
inline const std::string invalidEntry = "Invalid snapshot mount registry entry was retained.";

} // namespace marrowbox::test
