#include "Marrowbox/Platform/LoginItem.h"

#include "Platform/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>

namespace marrowbox {

namespace {

/// More than any entry needs, and little enough for whatever lies there in its place.
constexpr std::size_t longestEntry = 65536;

/// A regular file's first bytes. It is opened without waiting, since a pipe would hold the caller.
std::string beginningOf(const fs::path& path) {
    const Descriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    struct stat status{};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    std::string bytes(longestEntry, '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const std::size_t count = readSome(file, std::span(bytes).subspan(length));
        if (count == 0)
            break;
        length += count;
    }
    bytes.resize(length);
    return bytes;
}

} // namespace

LoginItem::LoginItem(const fs::path& settingsDirectory, fs::path executable)
    : entry_(settingsDirectory / "autostart" / "marrowbox.desktop"), executable_(std::move(executable)) {
}

LoginEntry LoginItem::read() const {
    try {
        return readLoginEntry(beginningOf(entry_));
    } catch (const std::system_error&) {
        return {};
    }
}

LoginItemStatus LoginItem::status() const {
    const LoginEntry entry = read();
    if (entry.isSwitchedOff())
        return LoginItemStatus::requiresApproval;
    return entry.startsAProgram ? LoginItemStatus::enabled : LoginItemStatus::disabled;
}

void LoginItem::enable() const {
    makeDirectories(entry_.parent_path(), 0700);
    AtomicFile file(entry_);
    writeAll(file.descriptor(), loginEntryText(executable_, read()));
    synchronize(file.descriptor(), entry_);
    file.publish();
}

void LoginItem::disable() const {
    if (::unlink(entry_.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR)
        throwSystemError("unlink", entry_);
}

} // namespace marrowbox
