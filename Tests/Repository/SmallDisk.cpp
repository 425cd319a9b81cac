#include "SmallDisk.h"

#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <system_error>

namespace marrowbox::test {

namespace {

void require(int result, const char* call) {
    if (result != 0)
        throw std::system_error(errno, std::generic_category(), call);
}

} // namespace

SmallDisk::SmallDisk(std::size_t mebibytes) {
    std::filesystem::create_directory(path());
    const std::string options = "size=" + std::to_string(mebibytes) + "m,mode=0700";
    if (::mount("none", path().c_str(), "tmpfs", 0, options.c_str()) != 0)
        whyNot_ = std::string("This machine does not let a test mount a disk: ") + std::strerror(errno);
}

SmallDisk::~SmallDisk() {
    if (isMounted() && !isAway_)
        ::umount2(path().c_str(), MNT_DETACH);
}

void SmallDisk::makeReadOnly() const {
    require(::mount(nullptr, path().c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), "mount");
}

void SmallDisk::makeReadOnly(const std::filesystem::path& folder) const {
    require(::mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr), "mount");
    require(::mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), "mount");
}

void SmallDisk::makeWritable(const std::filesystem::path& folder) const {
    require(::umount2(folder.c_str(), MNT_DETACH), "umount");
}

void SmallDisk::takeAway() {
    require(::umount2(path().c_str(), MNT_DETACH), "umount");
    isAway_ = true;
}

std::size_t SmallDisk::freeBytes() const {
    struct statvfs status{};
    require(::statvfs(path().c_str(), &status), "statvfs");
    return status.f_bavail * status.f_bsize;
}

} // namespace marrowbox::test
