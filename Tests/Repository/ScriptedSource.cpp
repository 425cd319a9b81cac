#include "ScriptedSource.h"

#include "Platform/Cancellation.h"
#include "TestRepository.h"

#include <algorithm>

namespace marrowbox::test {

void ScriptedSource::put(std::string_view path, std::string_view content, std::string_view version) {
    SourceEntry source = file(path, content).source;
    source.version = version;
    put(std::move(source), content);
}

void ScriptedSource::put(SourceEntry item, std::string_view content) {
    const std::string path = item.path.string();
    tree_[path] = {std::move(item), std::string(content)};
}

asio::awaitable<std::vector<SourceEntry>> ScriptedSource::inventory(std::stop_token) {
    ++inventories;
    if (beforeInventory)
        beforeInventory(inventories, {});
    std::vector<SourceEntry> listing;
    for (const auto& [path, leaf] : tree_)
        listing.push_back(leaf.item);
    if (listsBackwards && inventories % 2 == 0)
        std::ranges::reverse(listing);
    co_return listing;
}

asio::awaitable<void> ScriptedSource::download(std::vector<SourceEntry> entries, fs::path folder,
                                               std::stop_token stop) {
    throwIfCancelled(stop);
    auto& batch = batches.emplace_back();
    for (const auto& entry : entries) {
        const fs::path path = folder / entry.path.view();
        fs::create_directories(path.parent_path());
        writeFile(path, tree_.at(entry.path.string()).bytes);
        batch.push_back(entry.path.string());
    }
    if (afterDownload)
        afterDownload(static_cast<int>(batches.size()), folder);
    co_return;
}

} // namespace marrowbox::test
