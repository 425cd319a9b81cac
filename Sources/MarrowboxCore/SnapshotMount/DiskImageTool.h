#pragma once

#include "Platform/Wording.h"

#include <boost/asio/awaitable.hpp>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace marrowbox {

namespace asio = boost::asio;
namespace fs = std::filesystem;

/// One disk image that the system reports as attached.
struct Attachment {
    fs::path image;
    std::optional<fs::path> mountPoint;

    friend bool operator==(const Attachment&, const Attachment&) = default;
};

/// A program and its arguments.
struct ToolCommand {
    fs::path executable;
    std::vector<std::string> arguments;

    friend bool operator==(const ToolCommand&, const ToolCommand&) = default;
};

/// How one operating system turns a folder into a read-only volume and back. A "no" of a tool is an answer
/// here, and the caller's to judge; a tool that cannot be started throws ProcessRunner's failure, and a stop
/// throws CancellationError.
class DiskImageTool {
  public:
    virtual ~DiskImageTool() = default;

    /// The system whose words fit this tool.
    virtual OperatingSystem system() const = 0;

    /// Packs a folder into a read-only image with a volume name. False when the tool failed.
    virtual asio::awaitable<bool> create(fs::path folder, std::string volumeName, fs::path image,
                                         std::stop_token stop) = 0;

    /// Attaches an image and gives its mount point; none when the tool failed or mounted nothing. Throws
    /// BackupError when its answer cannot be understood.
    virtual asio::awaitable<std::optional<fs::path>> attach(fs::path image, std::string volumeName,
                                                            std::stop_token stop) = 0;

    /// All images that are attached now, whoever attached them. Throws BackupError when the answer is not
    /// complete: a partial list could make an attached image look gone.
    virtual asio::awaitable<std::vector<Attachment>> attached(std::stop_token stop) = 0;

    /// Detaches what is mounted at the attachment's mount point, never by force. False when the tool refused,
    /// as it does while files are in use.
    virtual asio::awaitable<bool> detach(Attachment attachment, std::stop_token stop) = 0;

    /// The question whether anything below a folder is open. Status 1 without output is a clear no.
    virtual ToolCommand openFilesQuery(const fs::path& folder) const = 0;
};

} // namespace marrowbox
