#pragma once

#include "SnapshotMount/SnapshotMount.h"

#include <boost/asio/any_io_executor.hpp>
#include <filesystem>
#include <memory>
#include <optional>

namespace marrowbox::test {

/// Where mounts live that a test and a program of its own share.
struct MountPlace {
    fs::path directory; ///< Of the registry.
    fs::path runtime;   ///< Of the session, with the mount points.
    std::optional<fs::path>
        mountList; ///< A file that stands for the list of mounts; absent for the real one.

    /// The mounts of a program that was just started.
    std::unique_ptr<SnapshotMount> start(const asio::any_io_executor& executor) const;
    std::shared_ptr<SnapshotMountSystem> machine() const;
    MountRegistryFolder folder() const { return {directory, machine()}; }
};

} // namespace marrowbox::test
