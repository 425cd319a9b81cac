#include "Platform/Wording.h"

#include <algorithm>
#include <array>

namespace marrowbox {

namespace {

constexpr auto table = std::to_array<Wording>({
    // The mail
    {"A little peace of mind. Sent by Marrowbox on your Mac.",
     "A little peace of mind. Sent by Marrowbox on your computer."},

    // Snapshots as volumes
    {"Could not prepare the read-only volume. Make sure your Mac has enough free space for the selected "
     "snapshot.",
     "Could not prepare the read-only volume. Make sure your computer has enough free space for the selected "
     "snapshot."},
    {"macOS could not mount the snapshot. You can still restore it to a folder.",
     "The system could not mount the snapshot. You can still restore it to a folder."},
    {"macOS returned ambiguous attach state.", "The system returned ambiguous attach state."},
    {"macOS disk-image state could not be inspected; temporary files were kept.",
     "The system’s disk-image state could not be inspected; temporary files were kept."},
    {"macOS returned ambiguous disk-image state.", "The system returned ambiguous disk-image state."},
    {"macOS returned an incomplete disk-image inventory.",
     "The system returned an incomplete disk-image inventory."},
    {"macOS has not finished ejecting the snapshot. Its temporary files were kept safely.",
     "The system has not finished ejecting the snapshot. Its temporary files were kept safely."},
    {"Open in Finder", "Open in file manager"},
    {"Mount read-only in Finder", "Mount read-only in file manager"},

    // Quitting
    {"The running backup will be cancelled. Mounted snapshots stay available in Finder, where you can eject "
     "them even while Marrowbox is closed. Scheduled backups resume next time the app opens.",
     "The running backup will be cancelled. Mounted snapshots stay available in your file manager, where you "
     "can eject them even while Marrowbox is closed. Scheduled backups resume next time the app opens."},

    // The unit page
    {"Catch-up snapshot · {count} scheduled snapshot missed while this Mac was asleep or offline",
     "Catch-up snapshot · {count} scheduled snapshot missed while this computer was asleep or offline"},
    {"Catch-up snapshot · {count} scheduled snapshots missed while this Mac was asleep or offline",
     "Catch-up snapshot · {count} scheduled snapshots missed while this computer was asleep or offline"},

    // Choosing a destination
    {"A folder on your Mac, disk, or NAS", "A folder on your computer, disk, or NAS"},
    {"Connect a NAS share in Finder before choosing it here.",
     "Connect a NAS share in your file manager before choosing it here."},
    {"Choose a folder on this Mac, an external drive, or a NAS share mounted in Finder.",
     "Choose a folder on this computer, an external drive, or a NAS share mounted in your file manager."},

    // Settings
    {"Approve Marrowbox in System Settings → General → Login Items.",
     "Approve Marrowbox in your desktop’s settings → Startup Applications."},
    {"Closing the window keeps backups running in the menu bar. Quitting the app pauses scheduled backups "
     "until it opens again.",
     "Closing the window keeps backups running in the system tray. Quitting the app pauses scheduled backups "
     "until it opens again."},
    {"Install it with Homebrew: brew install rclone", "Install it with APT: sudo apt install rclone"},
    {"Marrowbox ships with its own Google OAuth client. Import one only to sign in through your own Cloud "
     "project. Tokens stay securely on this Mac.",
     "Marrowbox ships with its own Google OAuth client. Import one only to sign in through your own Cloud "
     "project. Tokens stay securely on this computer."},
    {"A clear summary after every backup, including no-change runs and failures. Emails wait and retry if "
     "your Mac is offline.",
     "A clear summary after every backup, including no-change runs and failures. Emails wait and retry if "
     "your computer is offline."},
    {"Uses your Mac’s time zone. Missed snapshots catch up after waking or reconnecting the destination.",
     "Uses your computer’s time zone. Missed snapshots catch up after waking or reconnecting the "
     "destination."},
});

} // namespace

std::span<const Wording> wordings() {
    return table;
}

std::string worded(std::string_view sentence, OperatingSystem system) {
    const auto found = std::ranges::find(table, sentence, &Wording::macOS);
    if (found == table.end() || system == OperatingSystem::macOS)
        return std::string(sentence);
    return std::string(found->linux);
}

} // namespace marrowbox
