#pragma once

#include "DriveAPI/DriveFile.h"
#include "Models/DriveLocation.h"
#include "Models/SharedText.h"
#include "Models/SourceEntry.h"
#include "Platform/UnicodeText.h"

#include <boost/unordered/unordered_flat_set.hpp>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox {

/// A tree as it is walked, level by level: which folder is listed next, and what has been found. Every
/// refusal is a BackupError. Not safe to share between threads.
class DriveTree {
  public:
    /// Throws when the source is no folder or is in the trash.
    DriveTree(DriveLocation location, const DriveFile& source);

    /// The folder whose children come next; absent when all are known. Throws when it was listed before.
    std::optional<DriveLocation> nextFolder();
    /// The folder whose turn comes after so many others, from 1 for the one behind the folder that comes
    /// next, as soon as that can be told; absent also when it would be refused.
    std::optional<DriveLocation> upcomingFolder(std::size_t distance) const;
    /// Takes the children of the folder that came next, in any order.
    void add(std::vector<DriveFile> children);
    /// All entries, checked and sorted by path, once all folders are added. Ends the walk.
    std::vector<SourceEntry> finish();

  private:
    struct Folder {
        DriveLocation location;
        std::string path;
    };
    /// How far the lists reach once a folder's children are in them.
    struct Level {
        std::size_t prefixLength; ///< Of the folder's path in those of its children.
        std::size_t entriesEnd;
        std::size_t foldersEnd;
    };
    /// One child of a folder, or all that lies below it.
    struct Step {
        std::string_view name;
        std::size_t index; ///< Of the entry, or of the folder.
        bool isBelow;
    };
    void check(std::span<const DriveFile> children, std::span<const std::string> names,
               const std::string& prefix) const;
    static bool comesAfter(const Step& left, const Step& right);
    std::vector<Step> stepsBelow(std::size_t folder) const;
    void addFolder(DriveFile child, const std::string& path, const std::optional<std::string>& sharedDriveID);
    void addFile(DriveFile child, const std::string& path);

    std::vector<Folder> folders_;
    std::size_t next_ = 0;
    boost::unordered_flat_set<std::string> visited_;
    std::vector<SourceEntry> entries_;
    std::vector<Level> levels_; ///< One a folder, as far as they were added.
    TextPool types_;
    NameOrder order_;
};

} // namespace marrowbox
