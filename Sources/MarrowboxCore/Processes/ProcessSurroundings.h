#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace marrowbox {

/// What a child would take over from this process: handed to whatever starts one, so that a test gives a
/// child surroundings of its own and leaves those of the test program alone.
struct ProcessSurroundings {
    std::map<std::string, std::string> environment; ///< Variables by name.
    std::filesystem::path temporaryFolder;          ///< Where scratch folders are made.

    friend bool operator==(const ProcessSurroundings&, const ProcessSurroundings&) = default;

    /// The environment of this process, and the temporary folder that it names (TMPDIR, else /tmp). Must not
    /// run while another thread changes the environment.
    static ProcessSurroundings ofThisProcess();
};

} // namespace marrowbox
