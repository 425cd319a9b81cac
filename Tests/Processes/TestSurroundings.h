#pragma once

#include "Platform/Files.h"
#include "Processes/ProcessSurroundings.h"
#include "Support/ScratchFolder.h"

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::test {

/// Surroundings of a test's own: an empty temporary folder, and an environment that holds PATH alone.
class TestSurroundings {
  public:
    TestSurroundings() {
        value.environment = {{"PATH", "/usr/bin:/bin"}};
        value.temporaryFolder = scratch_ / "temporary";
        makeDirectory(value.temporaryFolder, 0700);
    }

    /// A path beside the temporary folder.
    fs::path operator/(std::string_view name) const { return scratch_ / name; }
    /// What stands in the temporary folder.
    std::vector<std::string> leftovers() const { return directoryNames(value.temporaryFolder); }

    ProcessSurroundings value;

  private:
    ScratchFolder scratch_;
};

} // namespace marrowbox::test
