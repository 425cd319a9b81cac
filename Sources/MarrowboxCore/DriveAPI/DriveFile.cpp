#include "DriveAPI/DriveFile.h"

namespace marrowbox {

bool DriveFile::isFolder() const {
    return mimeType == "application/vnd.google-apps.folder";
}

} // namespace marrowbox
