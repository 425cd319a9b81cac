#include "SnapshotMount/SquashfsTool.h"

#include "Models/BackupError.h"
#include "Repository/RepositoryLock.h"
#include "SnapshotMount/MountPaths.h"
#include "SnapshotMount/ProcessEnd.h"

#include <algorithm>
#include <boost/json/parse.hpp>

namespace marrowbox {

namespace {

/// FUSE separates options with commas, and takes a backslash before one as an escape.
std::string asMountOption(const std::string& text) {
    std::string option;
    for (const char byte : text) {
        if (byte == ',' || byte == '\\')
            option += '\\';
        option += byte;
    }
    return option;
}

BackupError refusal(std::string_view sentence) {
    return BackupError(worded(sentence, OperatingSystem::linux));
}

/// Paths may hold any byte, and are given as they are.
boost::json::value parsed(std::string_view output) {
    boost::json::parse_options options;
    options.allow_invalid_utf8 = true;
    boost::system::error_code failure;
    boost::json::value value = boost::json::parse(output, failure, {}, options);
    if (failure)
        throw refusal("macOS returned ambiguous disk-image state.");
    return value;
}

const boost::json::string* text(const boost::json::object& owner, std::string_view key) {
    const boost::json::value* member = owner.if_contains(key);
    return member != nullptr ? member->if_string() : nullptr;
}

/// The user who mounted a FUSE file system, as the kernel tells it. None where it is not told.
std::optional<std::string_view> mountedBy(const boost::json::object& mount) {
    constexpr std::string_view key = "user_id=";
    const boost::json::string* options = text(mount, "fs-options");
    std::string_view rest = options != nullptr ? std::string_view(*options) : std::string_view();
    while (!rest.empty()) {
        const auto end = std::min(rest.find(','), rest.size());
        const std::string_view option = rest.substr(0, end);
        if (option.starts_with(key))
            return option.substr(key.size());
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::nullopt;
}

/// Anybody may give a mount of his own the name of an image of ours, which the list of processes shows to
/// all. A mount that does not tell its user counts, since an image that is attached must never be deleted.
bool isOfAnotherUser(const boost::json::object& mount, uid_t user) {
    const auto found = mountedBy(mount);
    return found && *found != std::to_string(user);
}

/// The mount as an attachment; none when it is no FUSE mount of the user's, and so no image.
std::optional<Attachment> attachment(const boost::json::value& line, uid_t user) {
    const boost::json::object* mount = line.if_object();
    const boost::json::string* kind = mount != nullptr ? text(*mount, "fstype") : nullptr;
    if (kind == nullptr)
        throw refusal("macOS returned an incomplete disk-image inventory.");
    if ((*kind != "fuse" && !kind->starts_with("fuse.")) || isOfAnotherUser(*mount, user))
        return std::nullopt;
    const boost::json::string* source = text(*mount, "source");
    const boost::json::string* target = text(*mount, "target");
    if (source == nullptr || source->empty() || target == nullptr || target->empty())
        throw refusal("macOS returned an incomplete disk-image inventory.");
    return Attachment{.image = std::string_view(*source), .mountPoint = std::string_view(*target)};
}

std::optional<fs::path> mountPointOf(const fs::path& image, const std::vector<Attachment>& attachments) {
    const auto found = std::ranges::find(attachments, resolved(image),
                                         [](const Attachment& mount) { return resolved(mount.image); });
    return found == attachments.end() ? std::nullopt : found->mountPoint;
}

} // namespace

asio::awaitable<bool> SquashfsTool::create(fs::path folder, std::string, fs::path image,
                                           std::stop_token stop) {
    // Nothing is compressed, since the image lives as briefly as the mount. A file that cannot be read is a
    // failure; by default it would be left out.
    std::vector<std::string> arguments{
        folder, image,  "-noappend",  "-no-recovery",   "-exit-on-error", "-noI",  "-noD",
        "-noF", "-noX", "-no-xattrs", "-no-duplicates", "-no-progress",   "-quiet"};
    const auto result = co_await machine_->run("/usr/bin/mksquashfs", std::move(arguments), {}, stop);
    co_return result.status == 0;
}

asio::awaitable<std::optional<fs::path>> SquashfsTool::attach(fs::path image, std::string volumeName,
                                                              std::stop_token stop) {
    mountPoints_.prepare();
    const RepositoryLock lock(mountPoints_.lockFile(),
                              "Another snapshot mount operation is still finishing. Try again in a moment.");
    const fs::path mountPoint = mountPoints_.makeMountPoint(volumeName);
    bool isServed = false;
    try {
        isServed = co_await serve(image, mountPoint, stop);
    } catch (...) {
        mountPoints_.removeMountPoint(mountPoint);
        throw;
    }
    if (!isServed) {
        mountPoints_.removeMountPoint(mountPoint);
        co_return std::nullopt;
    }
    const auto attachments = co_await attached(stop);
    co_return mountPointOf(image, attachments);
}

asio::awaitable<bool> SquashfsTool::serve(fs::path image, fs::path mountPoint, std::stop_token stop) {
    std::vector<std::string> arguments{"-o", "ro,fsname=" + asMountOption(image), image, mountPoint};
    const auto result = co_await machine_->run("/usr/bin/squashfuse", std::move(arguments), {}, stop);
    co_return result.status == 0;
}

asio::awaitable<std::vector<Attachment>> SquashfsTool::attached(std::stop_token stop) {
    std::vector<std::string> arguments{"--json", "--list", "--output", "SOURCE,TARGET,FSTYPE,FS-OPTIONS"};
    const auto result = co_await machine_->run("/usr/bin/findmnt", std::move(arguments), {}, stop);
    if (result.status != 0)
        throw refusal("macOS disk-image state could not be inspected; temporary files were kept.");
    co_return inventory(result.output, machine_->currentUser());
}

asio::awaitable<bool> SquashfsTool::detach(Attachment attachment, std::stop_token stop) {
    const fs::path mountPoint = attachment.mountPoint.value();
    // Found before the detach and held by descriptor, so that its end cannot be missed.
    auto servers = machine_->processesWithArguments({attachment.image, mountPoint});
    std::vector<std::string> arguments{"-u", mountPoint};
    const auto result = co_await machine_->run("/usr/bin/fusermount3", std::move(arguments), {}, stop);
    if (result.status != 0)
        co_return false;
    co_await processesEnded(std::move(servers), serverEndLimit_);
    mountPoints_.removeMountPoint(mountPoint);
    co_return true;
}

ToolCommand SquashfsTool::openFilesQuery(const fs::path& folder) const {
    // Without -w it warns of other users' mounts, and a warning would count as an open file.
    return {"/usr/bin/lsof", {"-w", "-Fn", "+D", folder}};
}

std::vector<Attachment> SquashfsTool::inventory(std::string_view output, uid_t user) {
    const boost::json::value answer = parsed(output);
    const boost::json::object* root = answer.if_object();
    const boost::json::value* member = root != nullptr ? root->if_contains("filesystems") : nullptr;
    const boost::json::array* mounts = member != nullptr ? member->if_array() : nullptr;
    if (mounts == nullptr)
        throw refusal("macOS returned ambiguous disk-image state.");
    std::vector<Attachment> attachments;
    for (const boost::json::value& line : *mounts)
        if (auto mount = attachment(line, user))
            attachments.push_back(std::move(*mount));
    return attachments;
}

} // namespace marrowbox
