#include "Sandbox/Identity.h"

#include "Platform/RandomBytes.h"
#include "Sandbox/RandomToken.h"

#include <algorithm>
#include <boost/json.hpp>
#include <stdexcept>

namespace marrowbox::sandbox {

std::string randomToken(std::string_view prefix) {
    const auto bytes = randomBytes(30);
    if (!bytes)
        throw std::runtime_error("no random bytes");
    return std::string(prefix) + base64URLEncoded(*bytes);
}

std::string ClientIdentity::fileText() const {
    boost::json::object installed{{"client_id", id},
                                  {"project_id", project},
                                  {"auth_uri", "https://accounts.google.com/o/oauth2/auth"},
                                  {"token_uri", "https://oauth2.googleapis.com/token"},
                                  {"redirect_uris", {"http://localhost"}}};
    if (secret)
        installed["client_secret"] = *secret;
    return boost::json::serialize(boost::json::object{{"installed", std::move(installed)}});
}

bool Identity::Bearer::allows(std::string_view wanted) const {
    return (" " + scope + " ").find(" " + std::string(wanted) + " ") != std::string::npos;
}

Identity::Identity(ClientIdentity client, Clock clock)
    : client_(std::move(client)), clock_(std::move(clock)) {
}

void Identity::addPerson(Person person) {
    const std::lock_guard lock(mutex_);
    people_.push_back(std::move(person));
}

void Identity::setSignIn(SignInSettings settings) {
    const std::lock_guard lock(mutex_);
    settings_ = std::move(settings);
}

SandboxToken Identity::issueToken(std::optional<std::chrono::seconds> lifetime, std::string scope,
                                  std::string sub) {
    const std::lock_guard lock(mutex_);
    Grant grant;
    grant.sub = sub.empty() ? people_.at(0).sub : std::move(sub);
    grant.scope = std::move(scope);
    if (grant.scope.empty())
        grant.scope =
            std::string(profileScopes) + " " + std::string(driveScope) + " " + std::string(sendScope);
    SandboxToken token = accessFor(grant, lifetime.value_or(settings_.lifetime));
    token.refreshToken = randomToken("1//0");
    refreshTokens_.emplace(token.refreshToken, std::move(grant));
    return token;
}

SandboxToken Identity::accessFor(const Grant& grant, std::chrono::seconds lifetime) {
    SandboxToken token;
    token.accessToken = randomToken("ya29.");
    token.lifetime = lifetime;
    token.scope = grant.scope;
    accessTokens_.emplace(token.accessToken, Access{grant, clock_() + static_cast<double>(lifetime.count())});
    return token;
}

void Identity::expireAccessTokens() {
    const std::lock_guard lock(mutex_);
    accessTokens_.clear();
}

void Identity::revokeEverything() {
    const std::lock_guard lock(mutex_);
    accessTokens_.clear();
    refreshTokens_.clear();
    codes_.clear();
}

const Person* Identity::person(const std::string& sub) const {
    const auto found = std::find_if(people_.begin(), people_.end(),
                                    [&](const Person& candidate) { return candidate.sub == sub; });
    return found == people_.end() ? nullptr : &*found;
}

std::optional<Identity::Bearer> Identity::bearer(const RecordedRequest& request) const {
    const std::string header = request.header("Authorization").value_or("");
    if (!header.starts_with("Bearer "))
        return std::nullopt;
    const std::lock_guard lock(mutex_);
    const auto access = accessTokens_.find(header.substr(7));
    if (access == accessTokens_.end() || access->second.expiry <= clock_())
        return std::nullopt;
    const Person* owner = person(access->second.grant.sub);
    if (owner == nullptr)
        return std::nullopt;
    return Bearer{*owner, access->second.grant.scope};
}

Answer Identity::userinfo(const RecordedRequest& request) const {
    const auto asking = bearer(request);
    if (!asking)
        return oauthError(401, "invalid_request", "Invalid Credentials");
    boost::json::object profile{{"sub", asking->person.sub}};
    if (asking->allows("https://www.googleapis.com/auth/userinfo.email")) {
        profile["email"] = asking->person.email;
        profile["email_verified"] = true;
    }
    const bool mayTellName = asking->allows("https://www.googleapis.com/auth/userinfo.profile");
    if (mayTellName && !asking->person.name.empty())
        profile["name"] = asking->person.name;
    return Answer::json(boost::json::serialize(profile));
}

} // namespace marrowbox::sandbox
