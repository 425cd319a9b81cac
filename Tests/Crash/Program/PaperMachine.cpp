#include "Program/PaperMachine.h"

#include "Platform/Files.h"
#include "SnapshotMount/SquashfsTool.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>
#include <fcntl.h>

namespace marrowbox::test {

namespace {

namespace json = boost::json;

constexpr std::string_view noMounts = R"({"filesystems":[]})";

void replaceFile(const fs::path& path, std::string_view text) {
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC, 0600), text);
}

} // namespace

asio::awaitable<ProcessRunner::Result> PaperMachine::run(fs::path executable,
                                                         std::vector<std::string> arguments,
                                                         std::map<std::string, std::string>,
                                                         std::stop_token) {
    const std::string tool = executable.filename();
    if (tool == "findmnt")
        co_return ProcessRunner::Result{0, fs::exists(mountList_) ? readFile(mountList_)
                                                                  : std::string(noMounts)};
    if (tool == "lsof")
        co_return ProcessRunner::Result{1, ""};
    if (tool == "ps")
        co_return ProcessRunner::Result{0, "/sbin/init\n"};
    if (tool == "mksquashfs") {
        replaceFile(arguments.at(1), "an image");
        co_return ProcessRunner::Result{0, ""};
    }
    if (tool == "squashfuse")
        co_return ProcessRunner::Result{mount(arguments.at(2), arguments.at(3)), ""};
    co_return ProcessRunner::Result{unmount(arguments.at(1)), ""};
}

std::vector<Attachment> PaperMachine::mounts() const {
    return SquashfsTool::inventory(fs::exists(mountList_) ? readFile(mountList_) : noMounts, ::getuid());
}

void PaperMachine::setMounts(const std::vector<Attachment>& mounts) const {
    json::array lines;
    for (const Attachment& mount : mounts)
        lines.push_back({{"source", mount.image.string()},
                         {"target", mount.mountPoint.value_or("").string()},
                         {"fstype", "fuse.squashfuse"}});
    replaceFile(mountList_, json::serialize(json::object{{"filesystems", std::move(lines)}}));
}

int PaperMachine::mount(const fs::path& image, const fs::path& mountPoint) const {
    std::vector<Attachment> known = mounts();
    known.push_back({image, mountPoint});
    setMounts(known);
    return 0;
}

int PaperMachine::unmount(const fs::path& mountPoint) const {
    std::vector<Attachment> known = mounts();
    const bool wasMounted =
        std::erase_if(known, [&](const Attachment& mount) { return mount.mountPoint == mountPoint; }) == 1;
    setMounts(known);
    return wasMounted ? 0 : 1;
}

} // namespace marrowbox::test
