#include "GoogleOAuth/GoogleScopes.h"

namespace marrowbox::GoogleScopes {

std::vector<std::string> requested(bool email) {
    std::vector<std::string> scopes{"openid", "https://www.googleapis.com/auth/userinfo.email",
                                    "https://www.googleapis.com/auth/userinfo.profile", std::string(drive)};
    if (email)
        scopes.emplace_back(send);
    return scopes;
}

std::vector<std::string> granted(std::string_view scope) {
    std::vector<std::string> parts;
    while (!scope.empty()) {
        const std::size_t end = std::min(scope.find(' '), scope.size());
        if (end > 0)
            parts.emplace_back(scope.substr(0, end));
        scope.remove_prefix(std::min(end + 1, scope.size()));
    }
    return parts;
}

} // namespace marrowbox::GoogleScopes
