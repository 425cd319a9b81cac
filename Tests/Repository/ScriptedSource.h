#pragma once

#include "Repository/BackupSource.h"
#include "Support/SnapshotBuilder.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A source whose tree is set by the test, and that records what a run asks of it. A hook runs before each
/// operation and may change the tree, throw, or do something to the destination.
class ScriptedSource final : public BackupSource {
  public:
    using Hook = std::function<void(int call, const fs::path& folder)>;

    void put(std::string_view path, std::string_view content, std::string_view version = "1");
    void put(SourceEntry item, std::string_view content = "");
    void putFolder(std::string_view path) { put(folder(path).source); }
    void remove(std::string_view path) { tree_.erase(std::string(path)); }
    SourceEntry& item(std::string_view path) { return tree_.at(std::string(path)).item; }
    /// What arrives for a path in place of its content.
    void deliver(std::string_view path, std::string_view bytes) { tree_.at(std::string(path)).bytes = bytes; }

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;

    Hook beforeInventory; ///< call counts from 1; the folder is empty.
    Hook afterDownload;   ///< call counts batches from 1.
    bool listsBackwards = false;
    int inventories = 0;
    std::vector<std::vector<std::string>> batches;

  private:
    struct Leaf {
        SourceEntry item;
        std::string bytes;
    };
    std::map<std::string, Leaf> tree_;
};

} // namespace marrowbox::test
