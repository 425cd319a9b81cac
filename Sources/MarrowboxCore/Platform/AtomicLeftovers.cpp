#include "Platform/AtomicLeftovers.h"

#include "Platform/Digest.h"
#include "Platform/FolderHandle.h"
#include "Platform/RandomBytes.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

constexpr std::size_t randomByteCount = 8;
constexpr std::string_view digits = "0123456789abcdef";

std::string prefixFor(const fs::path& target) {
    return "." + target.filename().string() + ".";
}

bool isTemporaryName(std::string_view name, std::string_view prefix) {
    return name.starts_with(prefix) && name.size() == prefix.size() + 2 * randomByteCount &&
           name.find_first_not_of(digits, prefix.size()) == std::string_view::npos;
}

/// As such a file is made; a umask may have taken bits from its mode.
bool isOfThisUserAlone(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_uid == ::getuid() && status.st_nlink == 1 &&
           (status.st_mode & 07777 & ~0600U) == 0;
}

void removeLeftovers(const FolderHandle& folder, const std::string& prefix) {
    for (const FolderHandle::Item& item : folder.items()) {
        if (!isTemporaryName(item.name, prefix))
            continue;
        const auto status = folder.linkStatus(item.name.c_str());
        if (status && isOfThisUserAlone(*status))
            folder.removeFile(item.name.c_str());
    }
}

} // namespace

fs::path temporaryNameBeside(const fs::path& target) {
    const auto random = randomBytes(randomByteCount);
    if (!random)
        throw std::system_error(EIO, std::generic_category(), "random bytes");
    return target.parent_path() / (prefixFor(target) + hexadecimal(*random));
}

void removeAtomicLeftovers(const fs::path& target) noexcept {
    try {
        if (const auto folder = FolderHandle::open(target.parent_path()))
            removeLeftovers(*folder, prefixFor(target));
    } catch (const std::exception&) {
        // They are looked for again at the next start.
    }
}

} // namespace marrowbox
