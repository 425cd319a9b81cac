#pragma once

#include "Marrowbox/Platform/ProgramLauncher.h"

#include <QDBusConnection>
#include <filesystem>

namespace marrowbox {

/// The desktop's file manager, asked over the session bus; where none answers there, the program that opens
/// addresses is asked. Nothing is waited for. The thread of an event loop.
class FileManager {
  public:
    /// The launcher outlives this object.
    FileManager(QDBusConnection sessionBus, ProgramLauncher& launcher)
        : bus_(std::move(sessionBus)), launcher_(launcher) {}

    void show(const std::filesystem::path& folder);

  private:
    QDBusConnection bus_;
    ProgramLauncher& launcher_;
    QObject questions_;
};

} // namespace marrowbox
