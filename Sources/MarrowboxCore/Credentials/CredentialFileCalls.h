#pragma once

#include "Platform/FileProtection.h"

#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace marrowbox {

/// The calls in which a disk can fail or a stranger can interfere while the credential file is used. Each
/// answers as the system's own, errno included, and passes through unless somebody puts another in its place.
struct CredentialFileCalls {
    std::function<int(const char*, struct stat*)> lstat = [](auto path, auto into) {
        return ::lstat(path, into);
    };
    std::function<int(const char*, int, mode_t)> open = [](auto path, auto flags, auto mode) {
        return ::open(path, flags, mode);
    };
    std::function<ssize_t(int, const void*, std::size_t)> write = ::write;
    std::function<int(int)> fsync = ::fsync;
    std::function<int(const char*, const char*)> rename = ::rename;
    std::function<AccessList(const fs::path&)> accessList = marrowbox::accessList;
};

} // namespace marrowbox
