#pragma once

#include <boost/asio/awaitable.hpp>
#include <filesystem>
#include <optional>
#include <string>

namespace marrowbox {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// The desktop's own dialogs for files and folders, through its portal where there is one. They stand above
/// the program's window, or alone when it is closed. Absent when the user cancels. On the main executor.
namespace FileChoosers {

asio::awaitable<std::optional<fs::path>> chooseJSONFile(std::string message);
/// An existing folder, or one that the user makes on the way.
asio::awaitable<std::optional<fs::path>> chooseFolder(std::string message);

} // namespace FileChoosers

} // namespace marrowbox
