#pragma once

#include "GoogleOAuth/HTTPTurn.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace marrowbox {

/// One prepared request to a web service. Nothing is added to it on the way but what the protocol itself
/// needs.
struct HTTPRequest {
    std::string method; ///< Exactly as sent; only "GET" is ever repeated.
    std::string url;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    std::chrono::seconds timeout{60}; ///< For connecting, and for a transfer on which nothing moves.
    HTTPOrder order{};                ///< Of a request that does not stand alone.
};

/// What came back, whatever its status.
struct HTTPResponse {
    int status = 0;         ///< 0 when what came back was no HTTP response.
    std::string retryAfter; ///< The header of that name; empty when absent.
    std::string body;       ///< Of a response from 200 to 299; any other body is thrown away.
};

} // namespace marrowbox
