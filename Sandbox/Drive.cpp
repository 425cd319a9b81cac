#include "Sandbox/Drive.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace marrowbox::sandbox {

namespace {

/// Deeper than any tree of a test; ends the walk up a folder cycle.
constexpr int deepestTree = 200;

void describeContent(DriveItem& item) {
    item.size = std::to_string(item.content.size());
    item.md5Checksum = item.content.md5();
}

} // namespace

Drive::Drive(const std::string& idPrefix) : prefix_(idPrefix), rootID_(idPrefix + "MyDriveRoot") {
    DriveItem root;
    root.id = rootID_;
    root.name = "My Drive";
    root.mimeType = folderType;
    root.version = "1";
    root.modifiedTime = nextTime();
    items_.emplace(rootID_, std::move(root));
}

std::string Drive::resolved(std::string_view id) const {
    return id == "root" ? rootID_ : std::string(id);
}

std::string Drive::freshID(std::string_view kind) {
    return prefix_ + std::string(kind) + "_" + std::to_string(++counter_);
}

/// One second after the change before, so that every change shows.
std::string Drive::nextTime() {
    const std::int64_t second = changes_++;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "2026-%02d-%02dT%02d:%02d:%02d.000Z",
                  static_cast<int>(second / (28 * 86400) % 12 + 1), static_cast<int>(second / 86400 % 28 + 1),
                  static_cast<int>(second / 3600 % 24), static_cast<int>(second / 60 % 60),
                  static_cast<int>(second % 60));
    return text.data();
}

std::string Drive::insert(DriveItem item) {
    if (item.id.empty())
        item.id = freshID("item");
    for (std::string& parent : item.parents) {
        parent = resolved(parent);
        children_[parent].push_back(item.id);
    }
    const std::string id = item.id;
    if (!items_.emplace(id, std::move(item)).second)
        throw std::invalid_argument("an item with the id " + id + " is there already");
    return id;
}

DriveItem Drive::makeItem(std::string_view parent, std::string name, std::string_view mimeType) {
    const auto folder = find(resolved(parent));
    if (!folder)
        throw std::out_of_range("no folder " + std::string(parent));
    DriveItem item;
    item.name = std::move(name);
    item.mimeType = mimeType;
    item.parents = {folder->id};
    item.driveID = folder->driveID;
    item.version = "1";
    item.modifiedTime = nextTime();
    return item;
}

std::string Drive::addFolder(std::string_view parent, std::string name) {
    const std::lock_guard lock(mutex_);
    DriveItem item = makeItem(parent, std::move(name), folderType);
    item.id = freshID("folder");
    return insert(std::move(item));
}

std::string Drive::addFile(std::string_view parent, std::string name, Content content, std::string mimeType) {
    const std::lock_guard lock(mutex_);
    DriveItem item = makeItem(parent, std::move(name), mimeType);
    item.id = freshID("file");
    item.content = std::move(content);
    describeContent(item);
    return insert(std::move(item));
}

std::string Drive::addNative(std::string_view parent, std::string name, NativeKind kind, std::string text) {
    const std::lock_guard lock(mutex_);
    DriveItem item = makeItem(parent, std::move(name), nativeType(kind));
    item.id = freshID("native");
    item.content = Content(std::move(text));
    return insert(std::move(item));
}

std::string Drive::add(DriveItem item) {
    const std::lock_guard lock(mutex_);
    return insert(std::move(item));
}

std::string Drive::addSharedDrive(std::string name) {
    const std::lock_guard lock(mutex_);
    DriveItem top;
    top.id = freshID("drive");
    top.name = "Drive"; // what the service calls the top folder of every shared drive
    top.mimeType = folderType;
    top.driveID = top.id;
    top.version = "1";
    top.modifiedTime = nextTime();
    sharedDrives_.push_back({top.id, std::move(name)});
    return insert(std::move(top));
}

std::string Drive::addGenerated(std::string_view parent, std::string name, GeneratedTree shape) {
    const std::lock_guard lock(mutex_);
    DriveItem item = makeItem(parent, std::move(name), folderType);
    item.id = freshID("tree");
    generated_.emplace_back(shape, item.id + "-", item.id, item.driveID);
    return insert(std::move(item));
}

/// The stored item of this id. One of a generated tree is stored from now on.
DriveItem& Drive::editable(std::string_view id) {
    const std::string known = resolved(id);
    if (const auto stored = items_.find(known); stored != items_.end())
        return stored->second;
    auto computed = find(known);
    if (!computed)
        throw std::out_of_range("no item " + known);
    touchedGenerated_.insert(known);
    insert(std::move(*computed));
    return items_.at(known);
}

void Drive::update(std::string_view id, const std::function<void(DriveItem&)>& change) {
    const std::lock_guard lock(mutex_);
    DriveItem& item = editable(id);
    const auto versionBefore = item.version;
    const auto timeBefore = item.modifiedTime;
    change(item);
    if (item.version && item.version == versionBefore)
        item.version = std::to_string(std::stoll(*item.version) + 1);
    if (item.modifiedTime && item.modifiedTime == timeBefore)
        item.modifiedTime = nextTime();
}

void Drive::rename(std::string_view id, std::string name) {
    update(id, [&](DriveItem& item) { item.name = std::move(name); });
}

void Drive::detach(const DriveItem& item) {
    for (const std::string& parent : item.parents)
        std::erase(children_[parent], item.id);
}

void Drive::move(std::string_view id, std::string_view newParent) {
    const std::string parent = resolved(newParent);
    update(id, [&](DriveItem& item) {
        detach(item);
        item.parents = {parent};
        children_[parent].push_back(item.id);
    });
}

void Drive::addParent(std::string_view id, std::string_view parent) {
    const std::string added = resolved(parent);
    update(id, [&](DriveItem& item) {
        item.parents.push_back(added);
        children_[added].push_back(item.id);
    });
}

void Drive::replaceContent(std::string_view id, Content content) {
    update(id, [&](DriveItem& item) {
        item.content = std::move(content);
        if (!item.isNative())
            describeContent(item);
    });
}

void Drive::trash(std::string_view id) {
    update(id, [](DriveItem& item) { item.trashed = true; });
}

void Drive::untrash(std::string_view id) {
    update(id, [](DriveItem& item) { item.trashed = false; });
}

void Drive::remove(std::string_view id) {
    const std::lock_guard lock(mutex_);
    const DriveItem& item = editable(id);
    detach(item);
    items_.erase(std::string(item.id));
}

std::optional<DriveItem> Drive::find(const std::string& id) const {
    if (const auto stored = items_.find(id); stored != items_.end())
        return stored->second;
    if (touchedGenerated_.contains(id))
        return std::nullopt;
    for (GeneratedItems& tree : generated_)
        if (auto computed = tree.find(id))
            return computed;
    return std::nullopt;
}

bool Drive::isTrashed(const DriveItem& item) const {
    if (item.trashed)
        return true;
    std::string above = item.parents.empty() ? std::string() : item.parents.front();
    for (int depth = 0; !above.empty() && depth < deepestTree; ++depth) {
        const auto folder = find(above);
        if (!folder)
            return false;
        if (folder->trashed)
            return true;
        above = folder->parents.empty() ? std::string() : folder->parents.front();
    }
    return false;
}

std::optional<DriveItem> Drive::item(std::string_view id) const {
    const std::lock_guard lock(mutex_);
    auto found = find(resolved(id));
    if (found)
        found->trashed = isTrashed(*found);
    return found;
}

std::vector<Drive::SharedDrive> Drive::sharedDrives() const {
    const std::lock_guard lock(mutex_);
    return sharedDrives_;
}

bool Drive::isSharedDrive(std::string_view id) const {
    const std::lock_guard lock(mutex_);
    return std::any_of(sharedDrives_.begin(), sharedDrives_.end(),
                       [&](const SharedDrive& drive) { return drive.id == id; });
}

/// Adds the number of computed places of the folder to what was passed; false when the visit has ended.
bool Drive::visitGenerated(const std::string& folder, std::int64_t from, bool trashed, const Visit& visit,
                           std::int64_t& passed) const {
    for (GeneratedItems& tree : generated_) {
        const std::int64_t count = tree.childCount(folder);
        for (std::int64_t index = std::max<std::int64_t>(from - passed, 0); index < count; ++index) {
            DriveItem item = tree.child(folder, index);
            if (touchedGenerated_.contains(item.id))
                continue;
            item.trashed = trashed;
            if (!visit(passed + index, item))
                return false;
        }
        passed += count;
    }
    return true;
}

void Drive::visitChildren(std::string_view folder, std::int64_t from, const Visit& visit) const {
    const std::lock_guard lock(mutex_);
    const std::string parent = resolved(folder);
    const auto above = find(parent);
    const bool trashed = above && isTrashed(*above);
    std::int64_t passed = 0;
    if (!visitGenerated(parent, from, trashed, visit, passed))
        return;
    const auto listed = children_.find(parent);
    if (listed == children_.end())
        return;
    const auto count = static_cast<std::int64_t>(listed->second.size());
    for (std::int64_t index = std::max<std::int64_t>(from - passed, 0); index < count; ++index) {
        const DriveItem& item = items_.at(listed->second[static_cast<std::size_t>(index)]);
        if (!trashed || item.trashed) {
            if (!visit(passed + index, item))
                return;
            continue;
        }
        DriveItem below = item;
        below.trashed = true;
        if (!visit(passed + index, below))
            return;
    }
}

} // namespace marrowbox::sandbox
