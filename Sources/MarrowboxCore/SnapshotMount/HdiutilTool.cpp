#include "SnapshotMount/HdiutilTool.h"

#include "Models/BackupError.h"
#include "SnapshotMount/PropertyList.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// A member that is a list of dictionaries; null when it is missing or anything else.
const PropertyList::List* dictionaries(const PropertyList& owner, const std::string& key) {
    const PropertyList* member = owner.member(key);
    const PropertyList::List* list = member != nullptr ? member->list() : nullptr;
    if (list == nullptr)
        return nullptr;
    const bool areAll = std::ranges::all_of(
        *list, [](const PropertyList& element) { return element.dictionary() != nullptr; });
    return areAll ? list : nullptr;
}

/// An image can have several entities, such as a partition map and a partition; the first that is mounted
/// counts. An empty text names no place.
std::optional<fs::path> firstMountPoint(const PropertyList::List& entities) {
    for (const PropertyList& entity : entities) {
        const PropertyList* point = entity.member("mount-point");
        if (point != nullptr && point->string() != nullptr && !point->string()->empty())
            return fs::path(*point->string());
    }
    return std::nullopt;
}

Attachment attachment(const PropertyList& image) {
    const PropertyList* path = image.member("image-path");
    const PropertyList::List* entities = dictionaries(image, "system-entities");
    if (path == nullptr || path->string() == nullptr || path->string()->empty() || entities == nullptr)
        throw BackupError("macOS returned an incomplete disk-image inventory.");
    return {.image = *path->string(), .mountPoint = firstMountPoint(*entities)};
}

} // namespace

asio::awaitable<ProcessRunner::Result> HdiutilTool::run(std::vector<std::string> arguments,
                                                        std::stop_token stop) {
    return machine_->run("/usr/bin/hdiutil", std::move(arguments), {}, std::move(stop));
}

asio::awaitable<bool> HdiutilTool::create(fs::path folder, std::string volumeName, fs::path image,
                                          std::stop_token stop) {
    std::vector<std::string> arguments{"create", "-quiet", "-srcfolder", folder,     "-format", "UDRO",
                                       "-fs",    "HFS+",   "-volname",   volumeName, image};
    const auto result = co_await run(std::move(arguments), stop);
    co_return result.status == 0;
}

asio::awaitable<std::optional<fs::path>> HdiutilTool::attach(fs::path image, std::string,
                                                             std::stop_token stop) {
    std::vector<std::string> arguments{"attach", "-readonly", "-plist", image};
    const auto result = co_await run(std::move(arguments), stop);
    if (result.status != 0)
        co_return std::nullopt;
    co_return attachPoint(result.output);
}

asio::awaitable<std::vector<Attachment>> HdiutilTool::attached(std::stop_token stop) {
    std::vector<std::string> arguments{"info", "-plist"};
    const auto result = co_await run(std::move(arguments), stop);
    if (result.status != 0)
        throw BackupError("macOS disk-image state could not be inspected; temporary files were kept.");
    co_return inventory(result.output);
}

asio::awaitable<bool> HdiutilTool::detach(Attachment attachment, std::stop_token stop) {
    std::vector<std::string> arguments{"detach", attachment.mountPoint.value()};
    const auto result = co_await run(std::move(arguments), stop);
    co_return result.status == 0;
}

ToolCommand HdiutilTool::openFilesQuery(const fs::path& folder) const {
    return {"/usr/sbin/lsof", {"-Fn", "+D", folder}};
}

std::optional<fs::path> HdiutilTool::attachPoint(std::string_view output) {
    const PropertyList answer = PropertyList::parse(output);
    const PropertyList::List* entities = dictionaries(answer, "system-entities");
    if (entities == nullptr)
        throw BackupError("macOS returned ambiguous attach state.");
    return firstMountPoint(*entities);
}

std::vector<Attachment> HdiutilTool::inventory(std::string_view output) {
    const PropertyList answer = PropertyList::parse(output);
    const PropertyList::List* images = dictionaries(answer, "images");
    if (images == nullptr)
        throw BackupError("macOS returned ambiguous disk-image state.");
    std::vector<Attachment> attachments;
    for (const PropertyList& image : *images)
        attachments.push_back(attachment(image));
    return attachments;
}

} // namespace marrowbox
