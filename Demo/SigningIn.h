#pragma once

#include "GoogleOAuth/HTTP.h"
#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "Processes/ProcessSurroundings.h"

#include <stop_token>

namespace marrowbox::demo {

/// The program's own sign-in, with a person at a browser on the other side. Throws what either throws.
asio::awaitable<OAuthToken> signedIn(asio::any_io_executor executor, HTTP http,
                                     ProcessSurroundings surroundings, OAuthClient client,
                                     std::stop_token stop);

} // namespace marrowbox::demo
