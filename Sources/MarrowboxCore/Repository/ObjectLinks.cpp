#include "Repository/ObjectLinks.h"

#include <algorithm>
#include <system_error>

namespace marrowbox {

const ObjectLinks::FanOut& ObjectLinks::fanOut(const ObjectHash& valid) {
    FanOut& known = fanOuts_[valid.firstByte()];
    if (known.isKnown)
        return known;
    const fs::path path = paths_.fanOut(valid);
    const auto status = linkStatus(path);
    if (status && S_ISLNK(status->st_mode))
        refuseSymlink();
    known.isKnown = true;
    if (!status) // nothing in it can be examined either
        return known;
    const auto folder = FolderHandle::open(path);
    known.isUnlistable = !folder;
    try {
        if (folder)
            known.links = folder->symbolicLinks();
    } catch (const std::system_error&) {
        known.isUnlistable = true;
    }
    return known;
}

void ObjectLinks::reject(const ObjectHash& valid) {
    const FanOut& known = fanOut(valid);
    if (known.isUnlistable)
        rejectSymlink(paths_.object(valid));
    else if (!known.links.empty() && std::ranges::find(known.links, valid.text()) != known.links.end())
        refuseSymlink();
}

} // namespace marrowbox
