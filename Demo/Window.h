#pragma once

#include "Platform/DataDirectory.h"
#include "Processes/ProcessSurroundings.h"

#include <boost/asio/awaitable.hpp>
#include <filesystem>
#include <stop_token>

namespace marrowbox::demo {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// Says how to use the program with one's own Google account.
void tellDailyUse();

/// Opens Marrowbox itself, the program as it is installed, on the data in a folder, in the surroundings of
/// the stage, whose simulated Google services must go on. Ends when the program has ended; a stop ends it.
/// The session is the environment in which a display is looked for; where there is none, says so and does
/// nothing. Throws BackupError when the program cannot open its window, and CancellationError when it was
/// stopped before that.
asio::awaitable<void> showWindow(ProcessSurroundings surroundings, Environment session, fs::path folder,
                                 std::stop_token stop);

/// Writes a program that opens pages for the window, and gives the folder to look for it in before all
/// others. It answers for a user who signs in: the consent page is the simulated Google's, for which the
/// user's own browser would look in the wrong place. Other pages go to that browser, by MARROWBOX_DEMO_PATH.
fs::path writtenOpener(const fs::path& folder);

} // namespace marrowbox::demo
