// The part of the identity service that answers POST /token.
#include "Platform/Digest.h"
#include "Sandbox/Identity.h"
#include "Sandbox/RandomToken.h"

#include <boost/json.hpp>

namespace marrowbox::sandbox {

Answer Identity::tokenAnswer(const SandboxToken& token) const {
    boost::json::object told{{"access_token", token.accessToken},
                             {"expires_in", token.lifetime.count()},
                             {"token_type", "Bearer"}};
    if (!token.refreshToken.empty())
        told["refresh_token"] = token.refreshToken;
    if (settings_.namesScope)
        told["scope"] = token.scope;
    return Answer::json(boost::json::serialize(told));
}

Answer Identity::tokenEndpoint(const RecordedRequest& request) {
    if (request.method != "POST")
        return oauthError(405, "invalid_request", "Only POST is allowed.");
    if (!request.header("Content-Type").value_or("").starts_with("application/x-www-form-urlencoded"))
        return oauthError(400, "invalid_request", "The body must be a form.");
    const NamedValues form = request.form();
    if (firstValue(form, "client_id") != client_.id || firstValue(form, "client_secret") != client_.secret)
        return oauthError(401, "invalid_client", "The OAuth client was not found.");
    const std::string grantType = firstValue(form, "grant_type").value_or("");
    const std::lock_guard lock(mutex_);
    if (grantType == "authorization_code")
        return exchangeCode(form);
    if (grantType == "refresh_token")
        return refresh(form);
    return oauthError(400, "unsupported_grant_type", "Invalid grant_type: " + grantType);
}

Answer Identity::exchangeCode(const NamedValues& form) {
    const auto found = codes_.find(firstValue(form, "code").value_or(""));
    if (found == codes_.end())
        return oauthError(400, "invalid_grant", "Malformed auth code.");
    const Grant grant = found->second;
    codes_.erase(found); // a code is good for one attempt
    if (firstValue(form, "redirect_uri") != grant.redirectURI)
        return oauthError(400, "redirect_uri_mismatch", "Bad Request");
    const std::string verifier = firstValue(form, "code_verifier").value_or("");
    if (base64URLEncoded(sha256(verifier)) != grant.challenge)
        return oauthError(400, "invalid_grant", "Invalid code verifier.");
    SandboxToken token = accessFor(grant, settings_.lifetime);
    if (grant.isOffline && settings_.grantsRefreshToken) {
        token.refreshToken = randomToken("1//0");
        refreshTokens_.emplace(token.refreshToken, grant);
    }
    return tokenAnswer(token);
}

Answer Identity::refresh(const NamedValues& form) {
    const auto found = refreshTokens_.find(firstValue(form, "refresh_token").value_or(""));
    if (found == refreshTokens_.end())
        return oauthError(400, "invalid_grant", "Token has been expired or revoked.");
    const Grant grant = found->second;
    SandboxToken token = accessFor(grant, settings_.lifetime);
    if (settings_.rotatesRefreshToken) {
        refreshTokens_.erase(found);
        token.refreshToken = randomToken("1//0");
        refreshTokens_.emplace(token.refreshToken, grant);
    }
    return tokenAnswer(token);
}

} // namespace marrowbox::sandbox
