#include "Marrowbox/Platform/VolumeWatch.h"

#include "Platform/Files.h"

#include <algorithm>
#include <fcntl.h>
#include <system_error>
#include <utility>

namespace marrowbox {

namespace {

/// A mount that is only changed, such as to read-only, is the same volume still.
bool isSameVolume(const Mount& left, const Mount& right) {
    return left.id == right.id && left.target == right.target && left.source == right.source;
}

bool hasOneMissingIn(const std::vector<Mount>& mounts, const std::vector<Mount>& others) {
    return std::ranges::any_of(mounts, [&](const Mount& mount) {
        return std::ranges::none_of(others, [&](const Mount& other) { return isSameVolume(mount, other); });
    });
}

} // namespace

VolumeWatch::VolumeWatch(std::function<void()> appeared, std::function<void()> wentAway, fs::path list)
    : appeared_(std::move(appeared)), wentAway_(std::move(wentAway)), list_(std::move(list)) {
    try {
        file_ = openFile(list_, O_RDONLY);
        mounts_ = readMounts(list_);
    } catch (const std::system_error&) {
        return;
    }
    // The kernel marks the open list as exceptional once after each change; nothing is read from it.
    changes_ = std::make_unique<QSocketNotifier>(file_.number(), QSocketNotifier::Exception);
    QObject::connect(changes_.get(), &QSocketNotifier::activated, changes_.get(), [this] { compare(); });
}

void VolumeWatch::compare() {
    std::vector<Mount> now;
    try {
        now = readMounts(list_);
    } catch (const std::system_error&) {
        return; // the next change compares with the list that was read last
    }
    const std::vector<Mount> before = std::exchange(mounts_, now);
    // Taken before either is told: what listens may end this watch.
    const auto appeared = hasOneMissingIn(now, before) ? appeared_ : nullptr;
    const auto wentAway = hasOneMissingIn(before, now) ? wentAway_ : nullptr;
    if (wentAway)
        wentAway();
    if (appeared)
        appeared();
}

} // namespace marrowbox
