#pragma once

#include "Platform/Descriptor.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

/// System calls on files, with the system's words on failure: every function here throws std::system_error
/// unless it says otherwise, retries an interrupted call, and opens descriptors close-on-exec.
namespace marrowbox {

namespace fs = std::filesystem;

/// Throws std::system_error for the current errno; what names the call and the path.
[[noreturn]] void throwSystemError(std::string_view call, const fs::path& path);

/// open(2) with O_CLOEXEC added. The mode is exact only as far as the umask allows.
Descriptor openFile(const fs::path& path, int flags, mode_t mode = 0600);

/// lstat(2); absent when it fails, for whatever reason.
std::optional<struct stat> linkStatus(const fs::path& path);

/// True when the path itself is a symbolic link; false when it is not or cannot be examined.
bool isSymbolicLink(const fs::path& path);

/// stat(2): whether the path is a folder. Throws when it cannot be examined.
bool isDirectory(const fs::path& path);

/// The size of a regular file, by lstat(2); absent when it is none or cannot be examined.
std::optional<std::int64_t> regularFileSize(const fs::path& path);

/// Reads at most into.size() bytes; 0 at the end.
std::size_t readSome(const Descriptor& file, std::span<char> into);

/// The rest of the file.
std::string readAll(const Descriptor& file);

/// The whole file.
std::string readFile(const fs::path& path);

/// Writes all the bytes, going on after short writes.
void writeAll(const Descriptor& file, std::string_view bytes);

/// Copies a whole file into an empty one, wherever the first one's position is. The system does it by itself,
/// or lets both share their bytes, where the file systems can.
void copyContents(const Descriptor& from, const Descriptor& to);

/// fsync(2).
void synchronize(const Descriptor& file, const fs::path& path);

/// Opens a file for writing, synchronises it to stable storage, and closes it.
void synchronizeFile(const fs::path& path);

/// fsync(2) of a folder, so that the names in it last. A file system that cannot do this for folders keeps
/// its own promise, and is no failure.
void synchronizeFolder(const fs::path& path);

/// Asks the system to begin writing so many bytes of the file to its storage, all from there on when it is
/// 0, without waiting. A hint: nothing is promised, and nothing fails.
void startWriting(const Descriptor& file, std::size_t from = 0, std::size_t count = 0) noexcept;

/// mkdir(2) with exactly this mode, whatever the umask. An existing path is a failure.
void makeDirectory(const fs::path& path, mode_t mode);

/// Makes a folder and its missing parents, each made with exactly this mode, and without one as the umask has
/// it; an existing folder is fine.
void makeDirectories(const fs::path& path, std::optional<mode_t> mode = std::nullopt);

/// Names in a folder, hidden ones included, "." and ".." not, in the order of the file system.
std::vector<std::string> directoryNames(const fs::path& path);

/// Removes a tree without following links. Throws when something stays behind.
void removeTree(const fs::path& path);

/// A file written beside its target that replaces it in one rename, or vanishes with the object. The
/// temporary file has mode 0600 and a name that begins with a dot.
class AtomicFile {
  public:
    explicit AtomicFile(fs::path target);
    AtomicFile(AtomicFile&&) = default;
    ~AtomicFile();

    const Descriptor& descriptor() const { return file_; }
    /// Renames onto the target, which then has mode 0600. Nothing is synchronised.
    void publish();

  private:
    fs::path target_;
    fs::path temporary_;
    Descriptor file_;
};

} // namespace marrowbox
