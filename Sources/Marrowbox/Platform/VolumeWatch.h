#pragma once

#include "Marrowbox/Platform/MountTable.h"
#include "Platform/Descriptor.h"

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace marrowbox {

/// Tells when volumes appear and go away. Several changes that the kernel reports as one are told as one. The
/// thread of an event loop.
class VolumeWatch {
  public:
    /// A list that cannot be watched is no failure; nothing is told then.
    VolumeWatch(std::function<void()> appeared, std::function<void()> wentAway,
                fs::path list = kernelMountList);

  private:
    void compare();

    std::function<void()> appeared_;
    std::function<void()> wentAway_;
    fs::path list_;
    Descriptor file_;
    std::vector<Mount> mounts_;
    std::unique_ptr<QSocketNotifier> changes_;
};

} // namespace marrowbox
