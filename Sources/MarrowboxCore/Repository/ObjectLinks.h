#pragma once

#include "Models/ObjectHash.h"
#include "Platform/FolderHandle.h"
#include "Repository/ObjectPaths.h"

#include <array>
#include <string>
#include <vector>

namespace marrowbox {

/// Looks for links at the paths of very many objects, whether or not those exist. Each fan-out folder is
/// listed once, which answers for all of its objects; a history names far more objects than there are
/// folders. It lives for one reading of a history. Not safe to share between threads.
class ObjectLinks {
  public:
    explicit ObjectLinks(ObjectPaths paths) : paths_(std::move(paths)) {}

    /// Throws BackupError when the fan-out folder or the object's path is a link.
    void reject(const ObjectHash& valid);

  private:
    struct FanOut {
        std::vector<std::string> links;
        bool isKnown = false;
        bool isUnlistable = false; ///< Its objects are looked at one by one.
    };
    const FanOut& fanOut(const ObjectHash& valid);

    ObjectPaths paths_;
    std::array<FanOut, fanOutCount> fanOuts_;
};

} // namespace marrowbox
