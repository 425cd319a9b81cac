#pragma once

#include "Sandbox/DriveItem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace marrowbox::sandbox {

/// A tree that is computed from its numbers: nothing of it is stored until a test changes an item.
struct GeneratedTree {
    std::int64_t folders = 0;
    std::int64_t filesPerFolder = 0;
    /// Folders inside a folder; 0 puts all of them side by side under the tree's own folder.
    std::int64_t foldersPerFolder = 0;
    std::int64_t fileBytes = 64;
    /// How many contents the files share; 0 gives each its own. Big files want few, since each content's
    /// digest is computed once.
    std::int64_t distinctContents = 0;
};

/// The items of one generated tree. Its owner guards it against other threads.
class GeneratedItems {
  public:
    GeneratedItems(GeneratedTree shape, std::string prefix, std::string rootID, std::string driveID);

    /// The item of this id; absent when it is none of this tree.
    std::optional<DriveItem> find(std::string_view id);
    /// How many children a folder has; 0 for any other id.
    std::int64_t childCount(std::string_view folderID) const;
    /// The child at this index of a folder that has that many.
    DriveItem child(std::string_view folderID, std::int64_t index);

  private:
    struct Place {
        char kind = 0; // 'r' for the folder that holds the tree, 'd' for a folder, 'f' for a file
        std::int64_t number = 0;
    };
    std::optional<Place> place(std::string_view id) const;
    std::int64_t subfolderCount(Place folder) const;
    std::int64_t firstSubfolder(Place folder) const;
    std::string folderID(std::int64_t number) const;
    std::string parentOf(std::int64_t folderNumber) const;
    DriveItem folder(std::int64_t number) const;
    DriveItem file(std::int64_t number);
    std::string digestOf(std::int64_t contentNumber, const Content& content);

    GeneratedTree shape_;
    std::string prefix_;
    std::string rootID_;
    std::string driveID_;
    std::unordered_map<std::int64_t, std::string> digests_;
};

} // namespace marrowbox::sandbox
