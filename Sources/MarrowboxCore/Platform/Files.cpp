#include "Platform/Files.h"

#include "Platform/AtomicLeftovers.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <system_error>

namespace marrowbox {

namespace {

constexpr std::size_t readChunk = 1 << 20;
constexpr std::size_t copyChunk = 1 << 16;

/// Repeats a call that a signal interrupted.
template <typename Call>
auto retryInterrupted(Call call) {
    while (true) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

/// Gives a folder that was just made the mode that a umask may have kept from it. Whoever may write to the
/// folder above can put a link in its place meanwhile, so that nothing is changed without need, and nothing
/// through a link.
void giveMode(int above, const fs::path& path, mode_t mode) {
    struct stat status{};
    if (::fstatat(above, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        throwSystemError("stat", path);
    if (S_ISDIR(status.st_mode) && (status.st_mode & 07777) == mode)
        return;
    if (::fchmodat(above, path.c_str(), mode, AT_SYMLINK_NOFOLLOW) != 0)
        throwSystemError("chmod", path);
}

/// False with errno set when there is no new folder; a mode that is given holds whatever the umask.
bool isMade(const fs::path& path, std::optional<mode_t> mode) {
    if (::mkdir(path.c_str(), mode.value_or(0777)) != 0)
        return false;
    if (mode)
        giveMode(AT_FDCWD, path, *mode);
    return true;
}

/// Goes down piece by piece, for a path that is longer than a call takes.
void makeLongDirectories(const fs::path& path, std::optional<mode_t> mode) {
#ifdef __linux__
    constexpr int inPassing = O_PATH; // needs no right to list the folder
#else
    constexpr int inPassing = O_RDONLY;
#endif
    Descriptor folder = openFile(path.is_absolute() ? path.root_path() : ".", inPassing | O_DIRECTORY);
    for (const fs::path& piece : path.relative_path()) {
        const bool isNew = ::mkdirat(folder.number(), piece.c_str(), mode.value_or(0777)) == 0;
        if (!isNew && errno != EEXIST)
            throwSystemError("mkdir", path);
        if (isNew && mode)
            giveMode(folder.number(), piece, *mode);
        Descriptor inner(::openat(folder.number(), piece.c_str(), inPassing | O_DIRECTORY | O_CLOEXEC));
        if (!inner)
            throwSystemError("mkdir", path);
        folder = std::move(inner);
    }
}

} // namespace

void throwSystemError(std::string_view call, const fs::path& path) {
    const int code = errno;
    throw std::system_error(code, std::generic_category(), std::string(call) + " " + path.string());
}

Descriptor openFile(const fs::path& path, int flags, mode_t mode) {
    Descriptor file(retryInterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); }));
    if (!file)
        throwSystemError("open", path);
    return file;
}

std::optional<struct stat> linkStatus(const fs::path& path) {
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

bool isSymbolicLink(const fs::path& path) {
    const auto status = linkStatus(path);
    return status && S_ISLNK(status->st_mode);
}

bool isDirectory(const fs::path& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0)
        throwSystemError("stat", path);
    return S_ISDIR(status.st_mode);
}

std::optional<std::int64_t> regularFileSize(const fs::path& path) {
    const auto status = linkStatus(path);
    if (!status || !S_ISREG(status->st_mode))
        return std::nullopt;
    return status->st_size;
}

std::size_t readSome(const Descriptor& file, std::span<char> into) {
    const auto count = retryInterrupted([&] { return ::read(file.number(), into.data(), into.size()); });
    if (count < 0)
        throw std::system_error(errno, std::generic_category(), "read");
    return static_cast<std::size_t>(count);
}

std::string readAll(const Descriptor& file) {
    std::string bytes;
    struct stat status{};
    if (::fstat(file.number(), &status) == 0 && status.st_size > 0)
        bytes.reserve(static_cast<std::size_t>(status.st_size) + 1);
    while (true) {
        const std::size_t held = bytes.size();
        // One byte more than the known size finds the end without a second growth.
        bytes.resize(std::max(bytes.capacity(), held + std::min(readChunk, held + 4096)));
        const std::size_t count = readSome(file, std::span(bytes).subspan(held));
        bytes.resize(held + count);
        if (count == 0)
            return bytes;
    }
}

std::string readFile(const fs::path& path) {
    return readAll(openFile(path, O_RDONLY));
}

void writeAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count =
            retryInterrupted([&] { return ::write(file.number(), bytes.data(), bytes.size()); });
        if (count < 0)
            throw std::system_error(errno, std::generic_category(), "write");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

namespace {

/// Copies inside the system as far as it will; gives the number of bytes that it did.
off_t copyInSystem(const Descriptor& from, const Descriptor& to) {
    off_t copied = 0;
#ifdef __linux__
    constexpr std::size_t atATime = 1 << 30;
    loff_t position = 0;
    while (true) {
        const auto count = retryInterrupted(
            [&] { return ::copy_file_range(from.number(), &position, to.number(), nullptr, atATime, 0); });
        if (count <= 0)
            break; // the end, or a pair of files that it cannot do: what is left is read and written
        copied += count;
    }
#endif
    return copied;
}

} // namespace

void copyContents(const Descriptor& from, const Descriptor& to) {
    off_t position = copyInSystem(from, to);
    const auto buffer = std::make_unique_for_overwrite<char[]>(copyChunk);
    while (true) {
        const auto count =
            retryInterrupted([&] { return ::pread(from.number(), buffer.get(), copyChunk, position); });
        if (count < 0)
            throw std::system_error(errno, std::generic_category(), "read");
        if (count == 0)
            return;
        writeAll(to, {buffer.get(), static_cast<std::size_t>(count)});
        position += count;
    }
}

void synchronize(const Descriptor& file, const fs::path& path) {
    if (retryInterrupted([&] { return ::fsync(file.number()); }) != 0)
        throwSystemError("fsync", path);
}

void synchronizeFile(const fs::path& path) {
    synchronize(openFile(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK), path);
}

void synchronizeFolder(const fs::path& path) {
    const Descriptor folder = openFile(path, O_RDONLY | O_DIRECTORY);
    const auto synchronized = retryInterrupted([&] { return ::fsync(folder.number()); });
    const bool isUnsupported = errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
    if (synchronized != 0 && !isUnsupported)
        throwSystemError("fsync", path);
}

void startWriting([[maybe_unused]] const Descriptor& file, [[maybe_unused]] std::size_t from,
                  [[maybe_unused]] std::size_t count) noexcept {
#ifdef __linux__
    ::sync_file_range(file.number(), static_cast<off_t>(from), static_cast<off_t>(count),
                      SYNC_FILE_RANGE_WRITE);
#endif
}

void makeDirectory(const fs::path& path, mode_t mode) {
    if (!isMade(path, mode))
        throwSystemError("mkdir", path);
}

void makeDirectories(const fs::path& path, std::optional<mode_t> mode) {
    if (isMade(path, mode))
        return;
    if (errno == ENAMETOOLONG && path.native().size() >= PATH_MAX)
        return makeLongDirectories(path, mode);
    if (errno == ENOENT && path.has_relative_path()) {
        makeDirectories(path.parent_path(), mode);
        if (isMade(path, mode))
            return;
    }
    const int code = errno;
    struct stat status{};
    if (code == EEXIST && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return;
    errno = code;
    throwSystemError("mkdir", path);
}

std::vector<std::string> directoryNames(const fs::path& path) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path))
        names.push_back(entry.path().filename().string());
    return names;
}

void removeTree(const fs::path& path) {
    fs::remove_all(path);
}

AtomicFile::AtomicFile(fs::path target)
    : target_(std::move(target)), temporary_(temporaryNameBeside(target_)) {
    file_ = openFile(temporary_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
}

AtomicFile::~AtomicFile() {
    // A file that never took its target's place is worth nothing; that it cannot be removed changes nothing.
    if (file_)
        ::unlink(temporary_.c_str());
}

void AtomicFile::publish() {
    // Before the rename, so that no reader meets the file under its final name with another mode.
    if (::fchmod(file_.number(), 0600) != 0)
        throwSystemError("chmod", temporary_);
    if (::rename(temporary_.c_str(), target_.c_str()) != 0)
        throwSystemError("rename", target_);
    file_.close();
}

} // namespace marrowbox
