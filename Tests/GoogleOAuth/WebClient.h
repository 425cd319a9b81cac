#pragma once

#include "GoogleOAuth/HTTP.h"
#include "Support/Coroutine.h"
#include "Support/RecordedWaits.h"

#include <string>

namespace marrowbox::test {

/// A session for a server on the loopback interface, whatever proxy the surroundings name.
inline HTTPSettings loopbackSettings() {
    HTTPSettings settings;
    settings.proxy = "";
    settings.allowsPlainHTTP = true;
    return settings;
}

inline HTTPRequest webRequest(const std::string& method, const std::string& url) {
    return {.method = method, .url = url, .headers = {}, .body = {}};
}

/// A client with a session of its own whose waits take no time.
struct WebClient {
    RecordedWaits waits;
    HTTPSession session{loopbackSettings()};
    HTTP http{session, waits.wait()};

    std::string data(HTTPRequest request, std::stop_token stop = {}) {
        return await(http.data(std::move(request), std::move(stop)));
    }
    std::string get(const std::string& url) { return data(webRequest("GET", url)); }
    HTTPResponse send(HTTPRequest request, std::stop_token stop = {}) {
        return await(session.send(std::make_shared<const HTTPRequest>(std::move(request)), std::move(stop)));
    }
};

} // namespace marrowbox::test
