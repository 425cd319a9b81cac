#pragma once

#include "Platform/Clock.h"

#include <boost/describe/class.hpp>
#include <string>

namespace marrowbox {

/// What an account has granted, as the credential file keeps it.
struct OAuthToken {
    std::string accessToken;
    std::string refreshToken;
    Date expiry;       ///< When the access token ends.
    std::string scope; ///< Granted scopes separated by blanks; may be empty.

    friend bool operator==(const OAuthToken&, const OAuthToken&) = default;
};

BOOST_DESCRIBE_STRUCT(OAuthToken, (), (accessToken, refreshToken, expiry, scope))

} // namespace marrowbox
