#include "Support/FileCall.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace marrowbox::test {

namespace fs = std::filesystem;

namespace {

constexpr int none = -1;

/// Where a call says which file it means: positions of a folder's descriptor and of a text among its
/// arguments. A descriptor without a text is the file itself; a text without a descriptor starts from the
/// current folder.
struct Place {
    int descriptor = none;
    int text = none;
};

struct Shape {
    long number;
    std::string_view name;
    Place path;
    Place target = {};
    int openFlags = none;
};

constexpr auto shapes = std::to_array<Shape>({
#ifdef SYS_open // Older systems' calls, which newer processors do without.
    {SYS_open, "open", {none, 0}, {}, 1},
    {SYS_creat, "creat", {none, 0}},
    {SYS_rename, "rename", {none, 0}, {none, 1}},
    {SYS_mkdir, "mkdir", {none, 0}},
    {SYS_rmdir, "rmdir", {none, 0}},
    {SYS_unlink, "unlink", {none, 0}},
    {SYS_link, "link", {none, 0}, {none, 1}},
    {SYS_symlink, "symlink", {none, 1}},
    {SYS_chmod, "chmod", {none, 0}},
#endif
#ifdef SYS_renameat
    {SYS_renameat, "renameat", {0, 1}, {2, 3}},
#endif
    {SYS_openat, "openat", {0, 1}, {}, 2},
    {SYS_renameat2, "renameat2", {0, 1}, {2, 3}},
    {SYS_mkdirat, "mkdirat", {0, 1}},
    {SYS_unlinkat, "unlinkat", {0, 1}},
    {SYS_linkat, "linkat", {0, 1}, {2, 3}},
    {SYS_symlinkat, "symlinkat", {1, 2}},
    {SYS_fchmodat, "fchmodat", {0, 1}},
    {SYS_truncate, "truncate", {none, 0}},
    {SYS_write, "write", {0, none}},
    {SYS_pwrite64, "pwrite64", {0, none}},
    {SYS_writev, "writev", {0, none}},
    {SYS_pwritev, "pwritev", {0, none}},
    {SYS_pwritev2, "pwritev2", {0, none}},
    {SYS_copy_file_range, "copy_file_range", {2, none}},
    {SYS_sendfile, "sendfile", {0, none}},
    {SYS_fallocate, "fallocate", {0, none}},
    {SYS_ftruncate, "ftruncate", {0, none}},
    {SYS_fchmod, "fchmod", {0, none}},
    {SYS_fsync, "fsync", {0, none}},
    {SYS_fdatasync, "fdatasync", {0, none}},
    {SYS_syncfs, "syncfs", {0, none}},
    {SYS_sync_file_range, "sync_file_range", {0, none}},
    {SYS_flock, "flock", {0, none}},
});

/// A text in another process; empty when it cannot be read.
std::string textAt(std::uint64_t address, pid_t thread) {
    std::string text;
    std::array<char, 256> piece{};
    while (text.size() < PATH_MAX) {
        // To the end of an aligned piece, so that no unmapped page behind the text is touched.
        const std::size_t length = piece.size() - address % piece.size();
        const iovec into{piece.data(), length};
        const iovec from{reinterpret_cast<void*>(address), length}; // NOLINT(performance-no-int-to-ptr)
        if (::process_vm_readv(thread, &into, 1, &from, 1, 0) != static_cast<ssize_t>(length))
            return {};
        const std::size_t held = ::strnlen(piece.data(), length);
        text.append(piece.data(), held);
        if (held < length)
            return text;
        address += length;
    }
    return text;
}

/// The file behind a link that the system keeps for each process; empty when there is none.
fs::path behind(const std::string& link, pid_t thread) {
    std::error_code missing;
    return fs::read_symlink("/proc/" + std::to_string(thread) + "/" + link, missing);
}

fs::path pathAt(const Place& place, const seccomp_data& registers, pid_t thread) {
    const auto argument = [&](int position) { return registers.args[position]; };
    fs::path base;
    if (place.descriptor == none || static_cast<int>(argument(place.descriptor)) == AT_FDCWD)
        base = behind("cwd", thread);
    else
        base = behind("fd/" + std::to_string(static_cast<int>(argument(place.descriptor))), thread);
    if (place.text == none)
        return base;
    return (base / textAt(argument(place.text), thread)).lexically_normal();
}

} // namespace

bool FileCall::isWithin(const fs::path& folder) const {
    const auto lies = [&](const fs::path& file) {
        return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
    };
    return lies(path) || (!target.empty() && lies(target));
}

std::vector<int> fileCallNumbers() {
    std::vector<int> numbers;
    for (const Shape& shape : shapes)
        numbers.push_back(static_cast<int>(shape.number));
    return numbers;
}

std::optional<FileCall> readFileCall(const seccomp_data& registers, pid_t thread) {
    const auto* shape = std::find_if(shapes.begin(), shapes.end(),
                                     [&](const Shape& known) { return known.number == registers.nr; });
    if (shape == shapes.end())
        return std::nullopt;
    if (shape->openFlags != none && (registers.args[shape->openFlags] & (O_CREAT | O_TRUNC)) == 0)
        return std::nullopt;
    FileCall call{.name = shape->name, .path = pathAt(shape->path, registers, thread), .target = {}};
    if (shape->number == SYS_flock && registers.args[1] == LOCK_UN)
        call.name = "unlock";
    if (shape->target.text != none)
        call.target = pathAt(shape->target, registers, thread);
    return call;
}

} // namespace marrowbox::test
