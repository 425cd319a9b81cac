#pragma once

#include "Models/SharedText.h"

#include <boost/describe/class.hpp>
#include <optional>
#include <string>

namespace marrowbox {

/// One Drive item as the service returns it. Field names are the service's.
struct DriveFile {
    struct Capabilities {
        std::optional<bool> canDownload;

        friend bool operator==(const Capabilities&, const Capabilities&) = default;
    };

    SharedText id;
    std::string name; ///< Any Unicode.
    SharedText mimeType;
    std::optional<SharedText> version;
    std::optional<SharedText> modifiedTime; ///< As delivered; stands in for a missing version.
    std::optional<SharedText> size;         ///< Decimal text; absent for native documents and folders.
    std::optional<SharedText> md5Checksum;  ///< Absent for native documents.
    std::optional<bool> trashed;
    std::optional<SharedText> driveId;
    std::optional<Capabilities> capabilities;

    bool isFolder() const;

    friend bool operator==(const DriveFile&, const DriveFile&) = default;
};

BOOST_DESCRIBE_STRUCT(DriveFile::Capabilities, (), (canDownload))
BOOST_DESCRIBE_STRUCT(DriveFile, (),
                      (id, name, mimeType, version, modifiedTime, size, md5Checksum, trashed, driveId,
                       capabilities))

} // namespace marrowbox
