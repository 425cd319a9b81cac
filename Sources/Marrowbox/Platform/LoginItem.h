#pragma once

#include "Marrowbox/Platform/Desktop.h"
#include "Marrowbox/Platform/LoginEntry.h"

#include <filesystem>

namespace marrowbox {

/// The program's entry in the folder of what a desktop starts with the user's session.
class LoginItem {
  public:
    /// `marrowbox.desktop` in the folder `autostart` of the desktop's settings, which starts this executable.
    LoginItem(const fs::path& settingsDirectory, fs::path executable);

    const fs::path& entry() const { return entry_; }

    /// Never fails: an entry that cannot be read starts nothing. Requires approval when the desktop's
    /// settings have switched the entry off.
    LoginItemStatus status() const;
    /// Writes the entry in one step. One that was switched off stays so, since that was the user's wish.
    /// Throws std::system_error.
    void enable() const;
    /// Removes the entry; none is fine. Throws std::system_error.
    void disable() const;

  private:
    LoginEntry read() const;

    fs::path entry_;
    fs::path executable_;
};

} // namespace marrowbox
