#pragma once

#include "Support/FileCall.h"

#include <filesystem>
#include <set>

namespace marrowbox::test {

/// The work folders that have no marker, as the calls of a watched program have left them: not yet, or no
/// more. Nobody can prove whose such a folder is, so all that comes later leaves it and its entry alone.
class BareWorkFolders {
  public:
    explicit BareWorkFolders(std::filesystem::path workRoot) : workRoot_(std::move(workRoot)) {}

    /// A call is about to take place.
    void note(const FileCall& call);
    /// Those that stand now.
    std::set<std::filesystem::path> paths() const;

  private:
    std::filesystem::path workRoot_;
    std::set<std::filesystem::path> paths_;
};

} // namespace marrowbox::test
