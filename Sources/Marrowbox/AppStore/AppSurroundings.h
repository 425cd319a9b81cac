#pragma once

#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/HTTP.h"
#include "Marrowbox/Platform/Desktop.h"
#include "Models/SyncUnit.h"
#include "Platform/Calendar.h"
#include "Platform/Clock.h"
#include "Platform/DataDirectory.h"
#include "Platform/Executors.h"
#include "Platform/Formats.h"
#include "Processes/ProcessSurroundings.h"
#include "Repository/BackupSource.h"
#include "SnapshotMount/SnapshotMount.h"

#include <boost/asio/any_io_executor.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace marrowbox {

/// Makes the source of one run of a unit, with this rclone.
using SourceMaker = std::function<std::shared_ptr<BackupSource>(
    const SyncUnit&, std::shared_ptr<const GoogleAuth>, const fs::path& rclone)>;

/// All that the store takes from outside, handed over once. What is referred to outlives the store.
struct AppSurroundings {
    Desktop& desktop;
    asio::any_io_executor main; ///< The main thread's.
    asio::any_io_executor pool; ///< For work that blocks, and for the core's own executors.
    HTTP http;
    MountMachine mountMachine;
    SourceMaker makeSource;
    Environment environment;
    std::optional<fs::path> rclone;        ///< Absent when it is not installed.
    std::optional<fs::path> bundledClient; ///< The OAuth client file that this build brings along.
    Clock clock = systemClock();
    Wait wait = timerWait();
    /// The user's, asked for each time, since zones and languages change while a program runs.
    std::function<Calendar()> calendar = Calendar::current;
    std::function<Formats()> formats = Formats::current;
};

/// A Drive folder fetched by rclone, which runs in these surroundings.
SourceMaker rcloneSources(ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess());

} // namespace marrowbox
