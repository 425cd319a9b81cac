#include "Repository/WorkFolder.h"

#include <exception>

namespace marrowbox {

WorkFolder::~WorkFolder() {
    try {
        removeTree(path_);
    } catch (const std::exception&) {
        // What stays behind is named by no snapshot.
    }
}

} // namespace marrowbox
