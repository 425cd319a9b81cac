#include "SnapshotMount/OwnedRemoval.h"

#include "Models/BackupError.h"
#include "Platform/Files.h"
#include "SnapshotMount/MountPaths.h"

#include <algorithm>

namespace marrowbox {

namespace {

/// The marker goes last: what a crash leaves behind can still be proved to be ours.
void removeWorkFolder(const fs::path& workFolder) {
    for (const std::string& name : directoryNames(workFolder))
        if (name != MountRegistryFolder::markerName)
            removeTree(workFolder / name);
    removeTree(workFolder);
}

} // namespace

const Attachment* attachmentOf(const MountEntry& entry, const std::vector<Attachment>& attachments) {
    const auto found =
        std::ranges::find(attachments, resolved(entry.image.path()),
                          [](const Attachment& attachment) { return resolved(attachment.image); });
    return found == attachments.end() ? nullptr : &*found;
}

asio::awaitable<void> OwnedRemoval::remove(MountEntry entry, std::stop_token stop) const {
    const bool exists = folder_.validateWhereItStands(entry);
    const auto before = co_await images_->attached(stop);
    if (attachmentOf(entry, before) != nullptr)
        throw BackupError("The snapshot image is still attached and was retained.");
    refuseStrangePath(entry);
    if (!exists) {
        folder_.forget(entry);
        co_return;
    }
    refuseStrangeFolder(entry);
    co_await refuseOpenFiles(entry, stop);
    co_await refuseRunningTools(entry, stop);
    refuseNestedMount(entry);

    // The tools took a while, and anything may have changed meanwhile.
    const fs::path workFolder = entry.workingDirectory.path();
    const auto after = co_await images_->attached(stop);
    const bool isMountedInside = std::ranges::any_of(after, [&](const Attachment& attachment) {
        return attachment.mountPoint && isInside(*attachment.mountPoint, workFolder);
    });
    if (attachmentOf(entry, after) != nullptr || isMountedInside)
        throw BackupError("Snapshot temporary files are still mounted and were retained.");
    folder_.validate(entry, MarkerCheck::required);
    refuseNestedMount(entry);
    removeWorkFolder(workFolder);
    // A power cut must not bring back a folder that no entry names any more: nobody would ever delete it.
    synchronizeFolder(folder_.workRoot());
    folder_.forget(entry);
}

/// Said before already, and again here on purpose, so that a deletion never rests on another function.
void OwnedRemoval::refuseStrangePath(const MountEntry& entry) const {
    const fs::path workFolder = entry.workingDirectory.path();
    if (workFolder.parent_path() != folder_.workRoot() ||
        resolved(workFolder).parent_path() != resolved(folder_.workRoot()))
        throw BackupError("Unsafe snapshot work path was retained.");
}

void OwnedRemoval::refuseStrangeFolder(const MountEntry& entry) const {
    const fs::path workFolder = entry.workingDirectory.path();
    const auto status = linkStatus(workFolder);
    if (!status || !S_ISDIR(status->st_mode))
        throw BackupError("Ambiguous snapshot work folder was retained.");
    const MountEntry marker = folder_.readMarker(workFolder);
    if (marker.id != entry.id || marker.unitID != entry.unitID ||
        marker.workingDirectory.path() != workFolder)
        throw BackupError("Unrecognized snapshot work folder was retained.");
}

asio::awaitable<void> OwnedRemoval::refuseOpenFiles(MountEntry entry, std::stop_token stop) const {
    ToolCommand query = images_->openFilesQuery(entry.workingDirectory.path());
    const auto answer = co_await machine_->run(query.executable, query.arguments, {}, stop);
    if (answer.status != 1 || !answer.output.empty())
        throw BackupError("Snapshot temporary files may still be in use and were retained.");
}

/// Finds a tool that outlived an earlier run of the program.
asio::awaitable<void> OwnedRemoval::refuseRunningTools(MountEntry entry, std::stop_token stop) const {
    std::vector<std::string> arguments{"-axo", "command="};
    const auto answer = co_await machine_->run("/bin/ps", std::move(arguments), {}, stop);
    if (answer.status != 0)
        throw BackupError("Running mount preparation could not be inspected; temporary files were retained.");
    // The folder's own name, a fresh UUID, stands in its path and in that of the image. It is enough, and
    // needed: in some locales ps shows a question mark for each letter of the path beyond ASCII.
    if (answer.output.find(entry.workingDirectory.path().filename().native()) != std::string::npos)
        throw BackupError("Snapshot preparation is still running and was retained.");
}

void OwnedRemoval::refuseNestedMount(const MountEntry& entry) const {
    if (folder_.hasNestedMount(entry.workingDirectory.path()))
        throw BackupError("A filesystem is mounted inside snapshot temporary files; they were retained.");
}

} // namespace marrowbox
