#pragma once

#include <boost/describe/class.hpp>
#include <optional>
#include <string>

namespace marrowbox {

/// What is backed up: a folder in My Drive, a folder in a shared drive, or a whole shared drive.
struct DriveLocation {
    std::string id;                           ///< Drive id of the folder or shared drive.
    std::string name;                         ///< Its display name.
    std::optional<std::string> sharedDriveID; ///< The shared drive that holds it; absent for My Drive.

    friend bool operator==(const DriveLocation&, const DriveLocation&) = default;
};

BOOST_DESCRIBE_STRUCT(DriveLocation, (), (id, name, sharedDriveID))

} // namespace marrowbox
