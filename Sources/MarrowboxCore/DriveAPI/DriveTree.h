#pragma once

#include "DriveAPI/DriveFile.h"
#include "Models/DriveLocation.h"
#include "Models/SharedText.h"
#include "Models/SourceEntry.h"

#include <boost/unordered/unordered_flat_set.hpp>
#include <optional>
#include <string>
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
    /// Takes the children of that folder.
    void add(std::vector<DriveFile> children);
    /// All entries, checked and sorted by path. Ends the walk.
    std::vector<SourceEntry> finish();

  private:
    struct Folder {
        DriveLocation location;
        std::string path;
    };
    void addFolder(DriveFile child, const std::string& path, const std::optional<std::string>& sharedDriveID);
    void addFile(DriveFile child, const std::string& path);

    std::vector<Folder> folders_;
    std::size_t next_ = 0;
    boost::unordered_flat_set<std::string> visited_;
    std::vector<SourceEntry> entries_;
    TextPool types_;
};

} // namespace marrowbox
