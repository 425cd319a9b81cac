#pragma once

#include "Platform/Clock.h"
#include "Sandbox/Answer.h"
#include "Sandbox/RecordedRequest.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::sandbox {

/// The scopes by their published names.
inline constexpr std::string_view driveScope = "https://www.googleapis.com/auth/drive.readonly";
inline constexpr std::string_view sendScope = "https://www.googleapis.com/auth/gmail.send";
inline constexpr std::string_view profileScopes =
    "openid https://www.googleapis.com/auth/userinfo.email https://www.googleapis.com/auth/userinfo.profile";

/// Somebody with a Google account.
struct Person {
    std::string sub = "100000000000000000001";
    std::string email = "ada@example.com";
    std::string name = "Ada Example"; // empty: the profile has none
};

/// The OAuth client that the sandbox knows.
struct ClientIdentity {
    std::string id = "123456789012-sandbox.apps.googleusercontent.com";
    std::optional<std::string> secret = "GOCSPX-sandbox-secret";
    std::string project = "marrowbox-sandbox";

    /// The file that a person downloads for a Desktop client.
    std::string fileText() const;
};

/// A token as a client would have got it.
struct SandboxToken {
    std::string accessToken;
    std::string refreshToken;
    std::chrono::seconds lifetime{};
    std::string scope;
};

enum class ConsentAnswer {
    granted,
    denied,
    page ///< a page with a link for each of the two
};

/// How signing in and refreshing behave.
struct SignInSettings {
    ConsentAnswer consent = ConsentAnswer::granted;
    /// The account that is chosen, by sub; empty: the one that the hint names, else the first.
    std::string account;
    /// What the person grants; absent: all that was asked for.
    std::optional<std::string> grantedScope;
    std::chrono::seconds lifetime{3599};
    bool grantsRefreshToken = true;
    /// A refresh gives a new refresh token and ends the old one.
    bool rotatesRefreshToken = false;
    bool namesScope = true;
};

/// Accounts, tokens and codes. Any thread.
class Identity {
  public:
    Identity(ClientIdentity client, Clock clock);

    const ClientIdentity& client() const { return client_; }
    void addPerson(Person person);
    void setSignIn(SignInSettings settings);

    /// A token as after a sign-in; without a sub, that of the first account; without a scope, all scopes.
    SandboxToken issueToken(std::optional<std::chrono::seconds> lifetime = {}, std::string scope = {},
                            std::string sub = {});
    /// Refuses from now on all access tokens given so far.
    void expireAccessTokens();
    /// Refuses from now on all tokens given so far.
    void revokeEverything();

    /// Who asks, and what for.
    struct Bearer {
        Person person;
        std::string scope;
        bool allows(std::string_view wanted) const;
    };
    /// The bearer of a valid access token in the request; absent otherwise.
    std::optional<Bearer> bearer(const RecordedRequest& request) const;

    // The endpoints.
    Answer tokenEndpoint(const RecordedRequest& request);
    Answer consentEndpoint(const RecordedRequest& request);
    Answer userinfo(const RecordedRequest& request) const;

  private:
    struct Grant {
        std::string sub;
        std::string scope;
        std::string challenge;
        std::string redirectURI;
        bool isOffline = true;
    };
    struct Access {
        Grant grant;
        Date expiry;
    };
    Answer exchangeCode(const NamedValues& form);
    Answer refresh(const NamedValues& form);
    SandboxToken accessFor(const Grant& grant, std::chrono::seconds lifetime);
    Answer tokenAnswer(const SandboxToken& token) const;
    std::string chosenAccount(const RecordedRequest& request) const;
    Answer decided(const RecordedRequest& request, bool isGranted);
    const Person* person(const std::string& sub) const;

    const ClientIdentity client_;
    const Clock clock_;
    mutable std::mutex mutex_;
    SignInSettings settings_;
    std::vector<Person> people_;
    std::map<std::string, Grant> codes_;
    std::map<std::string, Grant> refreshTokens_;
    std::map<std::string, Access> accessTokens_;
};

} // namespace marrowbox::sandbox
