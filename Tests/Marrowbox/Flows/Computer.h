#pragma once

#include "AppSupport/PrivateBus.h"
#include "Processes/ProcessSurroundings.h"
#include "Sandbox/SandboxServer.h"
#include "Support/ScratchFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace marrowbox::test {

namespace fs = std::filesystem;

/// A computer of the test's own: a home, a desktop without services, a web that holds nothing but the
/// simulated Google, and an opener of pages and folders that writes down what it is asked to open.
class Computer {
  public:
    Computer();
    Computer(const Computer&) = delete;
    Computer& operator=(const Computer&) = delete;
    /// Takes away volumes that a failing test has left.
    ~Computer();

    sandbox::SandboxServer google;
    PrivateBus sessionBus;
    PrivateBus systemBus;

    /// A folder of this name in the home.
    fs::path folder(const std::string& name) const;
    fs::path dataFolder() const { return scratch_ / "data"; }
    fs::path settingsFolder() const { return scratch_ / "settings"; }
    /// What a process of the user's session is started with.
    const ProcessSurroundings& session() const { return session_; }
    fs::path authority() const { return scratch_ / "authority.pem"; }

    /// The addresses of the pages and folders that have been opened, in their order.
    std::vector<std::string> opened() const;

  private:
    ScratchFolder scratch_;
    ProcessSurroundings session_;
};

} // namespace marrowbox::test
