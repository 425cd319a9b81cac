#pragma once

#include "Sandbox/Drive.h"

#include <string>
#include <vector>

namespace marrowbox::sandbox {

/// A Drive of some hundred items of many kinds: what the demonstration backs up and end-to-end tests share.
struct DemoTree {
    /// "Ada's papers" in My Drive: nested folders, native documents, awkward names, an empty folder, an empty
    /// file, and one file of 50 MB. All of it can be backed up.
    std::string papers;
    /// The shared drive "Team".
    std::string team;
    /// A folder beside the papers that cannot be backed up: it holds a form and a shortcut.
    std::string forms;
    /// Some of the papers, by kind, for tests that change them.
    std::string largeFile;
    std::string document;
    std::vector<std::string> letters;
    /// How many items that are no folders stand below papers and below team.
    int papersFiles = 0;
    int teamFiles = 0;
};

/// Builds the tree.
DemoTree demoTree(Drive& drive);

/// How many items a round of work by its owners touched.
struct DemoChanges {
    int added = 0;
    int edited = 0;
    int renamed = 0;
    int moved = 0;
    int trashed = 0;
};

/// The papers after such a round: the same each time it is asked of a fresh tree.
DemoChanges changeDemoTree(Drive& drive, const DemoTree& tree);

} // namespace marrowbox::sandbox
