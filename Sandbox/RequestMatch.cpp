#include "Sandbox/RequestMatch.h"

namespace marrowbox::sandbox {

namespace {

constexpr std::string_view filesPath = "/drive/v3/files";

bool isFileRequest(const RecordedRequest& request, const std::string& id, bool wantsMedia) {
    const bool isMedia = request.queryItem("alt") == "media";
    return request.path == std::string(filesPath) + "/" + id && isMedia == wantsMedia;
}

} // namespace

RequestMatch anyRequest() {
    return [](const RecordedRequest&) { return true; };
}

RequestMatch toHost(std::string host) {
    return [host = std::move(host)](const RecordedRequest& request) { return request.host == host; };
}

RequestMatch withPath(std::string path) {
    return [path = std::move(path)](const RecordedRequest& request) { return request.path == path; };
}

RequestMatch listing(std::string folderID) {
    return [clause = "'" + folderID + "' in parents"](const RecordedRequest& request) {
        return request.path == filesPath &&
               request.queryItem("q").value_or("").find(clause) != std::string::npos;
    };
}

RequestMatch anyListing() {
    return withPath(std::string(filesPath));
}

RequestMatch listingDrives() {
    return withPath("/drive/v3/drives");
}

RequestMatch metadata(std::string id) {
    return [id = std::move(id)](const RecordedRequest& request) { return isFileRequest(request, id, false); };
}

RequestMatch media(std::string id) {
    return [id = std::move(id)](const RecordedRequest& request) { return isFileRequest(request, id, true); };
}

RequestMatch exportOf(std::string id) {
    return [id = std::move(id)](const RecordedRequest& request) {
        if (request.host == "docs.google.com")
            return request.queryItem("id") == id;
        return request.path == std::string(filesPath) + "/" + id + "/export";
    };
}

RequestMatch tokenCall() {
    return both(toHost("oauth2.googleapis.com"), withPath("/token"));
}

RequestMatch userinfoCall() {
    return both(toHost("openidconnect.googleapis.com"), withPath("/v1/userinfo"));
}

RequestMatch mailCall() {
    return withPath("/gmail/v1/users/me/messages/send");
}

RequestMatch both(RequestMatch first, RequestMatch second) {
    return [first = std::move(first), second = std::move(second)](const RecordedRequest& request) {
        return first(request) && second(request);
    };
}

} // namespace marrowbox::sandbox
