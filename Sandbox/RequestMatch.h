#pragma once

#include "Sandbox/RecordedRequest.h"

#include <functional>
#include <string>

namespace marrowbox::sandbox {

/// Says which requests are meant. A plain function, so that a test may bring its own.
using RequestMatch = std::function<bool(const RecordedRequest&)>;

/// Every request.
RequestMatch anyRequest();
/// Requests to a host.
RequestMatch toHost(std::string host);
/// Requests with exactly this decoded path, whatever the host.
RequestMatch withPath(std::string path);
/// Requests to "files" that ask for the children of this folder, as the client names it.
RequestMatch listing(std::string folderID);
/// Requests to "files" for the children of any folder.
RequestMatch anyListing();
/// Requests for the page of shared drives.
RequestMatch listingDrives();
/// Requests for one item's metadata.
RequestMatch metadata(std::string id);
/// Requests for one item's bytes.
RequestMatch media(std::string id);
/// Requests for one native item's export, by its link or by the export operation.
RequestMatch exportOf(std::string id);
/// Calls of the token endpoint.
RequestMatch tokenCall();
/// Calls for the profile of the signed-in person.
RequestMatch userinfoCall();
/// Requests that send mail.
RequestMatch mailCall();
/// Both hold.
RequestMatch both(RequestMatch first, RequestMatch second);

} // namespace marrowbox::sandbox
