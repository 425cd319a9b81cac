#include "AppSupport/PrivateMounts.h"

#include <QProcess>
#include <QStringList>
#include <cerrno>
#include <fstream>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <system_error>
#include <utility>

namespace marrowbox::test {

bool enterPrivateMounts() {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool runProgram(const std::string& program, const std::vector<std::string>& arguments) {
    QStringList words;
    for (const std::string& argument : arguments)
        words += QString::fromStdString(argument);
    return QProcess::execute(QString::fromStdString(program), words) == 0;
}

MemoryVolume::MemoryVolume(std::filesystem::path folder) : folder_(std::move(folder)) {
    if (::mount("memory", folder_.c_str(), "tmpfs", 0, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), "mount " + folder_.string());
}

MemoryVolume::~MemoryVolume() {
    ::umount(folder_.c_str());
}

ImageVolume::ImageVolume(std::filesystem::path image) : image_(std::move(image)) {
    std::ofstream(image_).close();
    std::filesystem::resize_file(image_, 4 << 20);
    if (!runProgram("/sbin/mkfs.ext4", {"-q", "-F", image_}))
        throw std::runtime_error("The image cannot be made.");
}

ImageVolume::~ImageVolume() {
    unmount();
}

bool ImageVolume::mount(const std::filesystem::path& folder) {
    if (!runProgram("mount", {"-o", "loop", image_, folder}))
        return false;
    folder_ = folder;
    return true;
}

void ImageVolume::unmount() {
    if (const auto folder = std::exchange(folder_, {}); !folder.empty())
        ::umount(folder.c_str());
}

} // namespace marrowbox::test
