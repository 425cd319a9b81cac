#pragma once

#include "Platform/DataDirectory.h"
#include "Platform/Descriptor.h"

#include <QObject>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace marrowbox {

/// Starts programs of the desktop that live on by themselves: they have a session of their own, none of this
/// program's descriptors, and outlive it. The thread of an event loop.
class ProgramLauncher {
  public:
    /// The environment of the programs, whose PATH finds them.
    explicit ProgramLauncher(Environment environment) : environment_(std::move(environment)) {}

    /// False when there is no such program or it cannot be started. What becomes of it is not told.
    bool start(const std::string& program, const std::vector<std::string>& arguments);
    /// Waits this long for a program that may end with a failure. False as above, or when it has failed by
    /// then; a program that still runs has begun its work.
    bool run(const std::string& program, const std::vector<std::string>& arguments,
             std::chrono::milliseconds patience);

  private:
    /// A descriptor of the process; empty when there is none.
    Descriptor launch(const std::string& program, const std::vector<std::string>& arguments) const;
    void reapWhenEnded(Descriptor process);

    Environment environment_;
    QObject watches_;
};

} // namespace marrowbox
