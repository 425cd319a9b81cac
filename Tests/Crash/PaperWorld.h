#pragma once

#include "BackedUpUnit.h"
#include "Program/MountPlace.h"
#include "SnapshotMount/DiskImageTool.h"
#include "Support/FileCall.h"
#include "Support/ScratchFolder.h"

#include <boost/asio/thread_pool.hpp>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace marrowbox::test {

/// Names and contents of a tree alone, since copies of a file are as old as they are.
std::string treeContents(const fs::path& path);

/// A disk with a snapshot, mounts that stand in a file, and what else may lie in their folders.
class PaperWorld {
  public:
    PaperWorld();

    /// Keeps all that can change, at its own paths, which stand in the registry.
    void keep() const { fs::copy(now_, before_, fs::copy_options::recursive); }
    void restore() const;

    /// The mounts of a program that was just started.
    std::unique_ptr<SnapshotMount> start() const { return place.start(pool_.get_executor()); }
    /// Mounts the snapshot as if it were the one with this id.
    SnapshotMount::Mounted mount(Uuid id) const;
    std::vector<Attachment> mountList() const;
    void setMountList(const std::vector<Attachment>& mounts) const;
    fs::path workRoot() const { return place.directory / "MountWork"; }
    std::vector<MountEntry> entries() const { return place.folder().load().entries; }
    bool hasEntryOf(Uuid id) const;

    /// These work folders and their entries are all that there is beside what is foreign.
    void expectWork(const std::set<fs::path>& workFolders) const;
    void expectForeignFilesUntouched() const;
    /// Whether a program's call is one that changes this world's disk.
    bool counts(const FileCall& call) const;

  private:
    std::string foreignFiles() const;

    const ScratchFolder scratch_{fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()};
    const fs::path now_ = scratch_ / "Now";
    const fs::path before_ = scratch_ / "Before";
    const fs::path data_ = now_ / "Data";
    mutable asio::thread_pool pool_{2};
    std::vector<std::string> foreignWork_;
    std::string foreignBefore_;

  public:
    const MountPlace place{data_ / "MountedSnapshots", now_ / "Runtime", now_ / "mounts"};
    const BackedUpUnit backup{scratch_ / "Disk", 5000};
};

} // namespace marrowbox::test
