#include "Repository/ObjectStatus.h"

namespace marrowbox {

ObjectStatus::ObjectStatus(ObjectPaths paths)
    : paths_(std::move(paths)), objects_(FolderHandle::open(paths_.objects)) {
}

const ObjectStatus::FanOut& ObjectStatus::fanOut(const ObjectHash& hash) {
    FanOut& known = fanOuts_[hash.firstByte()];
    std::call_once(known.isKnown, [&] { look(known, hash); });
    return known;
}

void ObjectStatus::look(FanOut& fanOut, const ObjectHash& hash) const {
    const fs::path path = paths_.fanOut(hash);
    const auto status = linkStatus(path);
    if (status && S_ISLNK(status->st_mode))
        refuseSymlink();
    fanOut.isAbsent = !status;
    if (objects_)
        fanOut.folder = objects_->folder(path.filename().c_str());
}

std::optional<struct stat> ObjectStatus::status(const ObjectHash& hash) {
    const FanOut& known = fanOut(hash);
    if (known.isAbsent)
        return std::nullopt;
    if (!known.folder) // it may be searched, but not opened
        return linkStatus(paths_.object(hash));
    std::array<char, 65> name{};
    hash.writeText(name.data());
    return known.folder->linkStatus(name.data());
}

std::optional<std::int64_t> ObjectStatus::size(const ObjectHash& hash) {
    requireValid(hash);
    const auto found = status(hash);
    if (found && S_ISLNK(found->st_mode))
        refuseSymlink();
    if (!found || !S_ISREG(found->st_mode))
        return std::nullopt;
    return found->st_size;
}

bool ObjectStatus::hasObject(const SnapshotEntry& entry) {
    if (!entry.objectHash)
        return entry.source.isDirectory;
    return size(*entry.objectHash) == entry.storedSize;
}

} // namespace marrowbox
