#pragma once

#include "DriveAPI/DriveFile.h"

#include <string>

namespace marrowbox::test {

inline const std::string folderType = "application/vnd.google-apps.folder";
inline const std::string documentType = "application/vnd.google-apps.document";

/// An ordinary file of version 1.
inline DriveFile driveFile(const std::string& id, const std::string& name,
                           const std::string& type = "text/plain") {
    DriveFile file;
    file.id = id;
    file.name = name;
    file.mimeType = type;
    file.version = "1";
    return file;
}

inline DriveFile driveFolder(const std::string& id, const std::string& name) {
    return driveFile(id, name, folderType);
}

} // namespace marrowbox::test
