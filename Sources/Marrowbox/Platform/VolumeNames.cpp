#include "Marrowbox/Platform/VolumeNames.h"

#include "Platform/Files.h"

#include <blkid/blkid.h>
#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>

namespace marrowbox {

namespace {

std::optional<dev_t> blockDevice(const fs::path& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode))
        return std::nullopt;
    return status.st_rdev;
}

/// Some file systems report a device of their own making, which has no major number; their source names the
/// real one.
std::optional<dev_t> deviceOf(const Mount& mount) {
    if (major(mount.device) != 0)
        return mount.device;
    return mount.source.starts_with("/dev/") ? blockDevice(mount.source) : std::nullopt;
}

/// Where the device can be opened: its source does not always name it, and not every system keeps the other.
fs::path fileOf(dev_t device, const Mount& mount) {
    if (blockDevice(mount.source) == device)
        return mount.source;
    return "/dev/block/" + std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

/// Reads the identifier from the device itself, for systems that keep no links. Absent for devices that this
/// user may not read.
std::optional<std::string> identifierOn(const fs::path& path) {
    struct Free {
        void operator()(blkid_probe probe) const { blkid_free_probe(probe); }
    };
    const std::unique_ptr<std::remove_pointer_t<blkid_probe>, Free> probe(
        blkid_new_probe_from_filename(path.c_str()));
    if (!probe)
        return std::nullopt;
    blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_UUID);
    const char* identifier = nullptr;
    if (blkid_do_safeprobe(probe.get()) != 0 ||
        blkid_probe_lookup_value(probe.get(), "UUID", &identifier, nullptr) != 0)
        return std::nullopt;
    return identifier;
}

} // namespace

VolumeNames::VolumeNames(const fs::path& identifierLinks) {
    std::vector<std::string> links;
    try {
        links = directoryNames(identifierLinks);
    } catch (const std::system_error&) {
        return; // a machine without such links
    }
    for (const std::string& link : links)
        if (const auto device = blockDevice(identifierLinks / link))
            identifiers_[*device] = link;
}

std::optional<std::string> VolumeNames::name(const Mount& mount) const {
    if (mount.isNetworkShare)
        return "share:" + mount.source;
    const auto device = deviceOf(mount);
    if (!device)
        return std::nullopt;
    const auto known = identifiers_.find(*device);
    const auto identifier =
        known != identifiers_.end() ? std::optional(known->second) : identifierOn(fileOf(*device, mount));
    if (!identifier)
        return std::nullopt;
    return "uuid:" + *identifier;
}

} // namespace marrowbox
