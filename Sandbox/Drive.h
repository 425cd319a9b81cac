#pragma once

#include "Sandbox/DriveItem.h"
#include "Sandbox/GeneratedTree.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace marrowbox::sandbox {

/// The Drive of one account: a tree that a test builds and changes, also while a client reads it. Each change
/// advances the item's version and modification time. Any thread. An operation on an unknown id throws
/// std::out_of_range.
class Drive {
  public:
    /// Takes the words with which ids begin, so that two accounts never share one.
    explicit Drive(const std::string& idPrefix = "");
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    /// The id of My Drive, which "root" stands for in every operation.
    const std::string& rootID() const { return rootID_; }

    /// Each gives the new item's id. The parent is a folder, "root" or a shared drive.
    std::string addFolder(std::string_view parent, std::string name);
    std::string addFile(std::string_view parent, std::string name, Content content,
                        std::string mimeType = "application/octet-stream");
    /// A native item; its exports are made from the text.
    std::string addNative(std::string_view parent, std::string name, NativeKind kind, std::string text = "");
    /// An item just as it stands, with whatever a test wants told. An empty id gets a fresh one.
    std::string add(DriveItem item);
    /// A shared drive's id is also the id of its top folder.
    std::string addSharedDrive(std::string name);
    /// A folder of this name that holds the generated tree.
    std::string addGenerated(std::string_view parent, std::string name, GeneratedTree shape);

    void rename(std::string_view id, std::string name);
    void move(std::string_view id, std::string_view newParent);
    /// A second parent, as no new item has, but old ones may.
    void addParent(std::string_view id, std::string_view parent);
    void replaceContent(std::string_view id, Content content);
    /// Into the trash with all that it holds.
    void trash(std::string_view id);
    void untrash(std::string_view id);
    /// Gone for good; what it held can no longer be reached from above.
    void remove(std::string_view id);
    /// Any other change. When the change leaves the version as it was, the version advances.
    void update(std::string_view id, const std::function<void(DriveItem&)>& change);

    /// The item as it is now, its trashed flag including that of the folders above; absent when unknown.
    std::optional<DriveItem> item(std::string_view id) const;

    struct SharedDrive {
        std::string id;
        std::string name;
    };
    std::vector<SharedDrive> sharedDrives() const;
    bool isSharedDrive(std::string_view id) const;

    /// Visits the children of a folder, from a place in their order on, until the visit gives false. A place
    /// stays valid while children are appended. The visit must not use the Drive.
    using Visit = std::function<bool(std::int64_t place, const DriveItem& item)>;
    void visitChildren(std::string_view folder, std::int64_t from, const Visit& visit) const;

  private:
    std::string resolved(std::string_view id) const;
    std::string freshID(std::string_view kind);
    std::string nextTime();
    std::string insert(DriveItem item);
    DriveItem makeItem(std::string_view parent, std::string name, std::string_view mimeType);
    DriveItem& editable(std::string_view id);
    std::optional<DriveItem> find(const std::string& id) const;
    bool isTrashed(const DriveItem& item) const;
    bool visitGenerated(const std::string& folder, std::int64_t from, bool trashed, const Visit& visit,
                        std::int64_t& passed) const;
    void detach(const DriveItem& item);

    mutable std::mutex mutex_;
    std::string prefix_;
    std::string rootID_;
    std::int64_t counter_ = 0;
    std::int64_t changes_ = 0;
    std::vector<SharedDrive> sharedDrives_;
    std::unordered_map<std::string, DriveItem> items_;
    std::unordered_map<std::string, std::vector<std::string>> children_;
    mutable std::vector<GeneratedItems> generated_;
    std::unordered_set<std::string> touchedGenerated_; // changed or removed, so no longer computed
};

} // namespace marrowbox::sandbox
