#pragma once

#include "Processes/ProcessSurroundings.h"

#include <boost/asio/awaitable.hpp>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace marrowbox::demo {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// How often, and after how long, an eject is tried again.
inline constexpr int ejectAttempts = 100;
inline constexpr std::chrono::milliseconds ejectPause(50);

/// The user's own surroundings, but that volumes appear below the stage's folder.
ProcessSurroundings surroundingsBelow(const fs::path& folder);

/// Ejects all volumes below the folder of a stage, whichever run of the demonstration left them, and waits
/// for what was stopped in the middle. Gives the reason when something stays.
asio::awaitable<std::optional<std::string>> clearVolumes(fs::path folder);

} // namespace marrowbox::demo
