#include "Client.h"

#include "Platform/Base64.h"
#include "Platform/Digest.h"

#include <atomic>
#include <boost/json.hpp>
#include <gmock/gmock.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::HasSubstr;

const std::string verifier = "a-verifier-of-forty-three-characters-0123456";
const std::string redirect = "http://127.0.0.1:4711";
const std::string form = "application/x-www-form-urlencoded";

struct SandboxIdentity : testing::Test {
    std::atomic<double> now = 1000;
    SandboxServer sandbox{{.clock = [this] { return Date{now}; }}};
    Client client{sandbox};
    ClientIdentity known = sandbox.identity().client();

    std::string consentAddress(const std::string& scope = std::string(driveScope),
                               const std::string& more = "") {
        return "https://accounts.google.com/o/oauth2/v2/auth?client_id=" + known.id +
               "&redirect_uri=" + percentEncoded(redirect) +
               "&response_type=code&scope=" + percentEncoded(scope) +
               "&access_type=offline&state=s1&code_challenge_method=S256&code_challenge=" +
               base64URLEncoded(sha256(verifier)) + more;
    }
    /// The query with which the browser comes back.
    NamedValues redirected(const std::string& address) {
        const Reply reply = client.get(address);
        EXPECT_EQ(reply.status, 302) << reply.body;
        const std::size_t start = reply.head.find("Location: " + redirect + "?") + 11 + redirect.size();
        return queryItems(std::string_view(reply.head).substr(start, reply.head.find("\r\n", start) - start));
    }
    std::string code() { return firstValue(redirected(consentAddress()), "code").value(); }
    Reply exchange(NamedValues fields) {
        fields.emplace_back("client_id", known.id);
        fields.emplace_back("client_secret", known.secret.value());
        std::string body;
        for (const auto& [name, value] : fields)
            body += (body.empty() ? "" : "&") + name + "=" + percentEncoded(value);
        return client.post("https://oauth2.googleapis.com/token", body);
    }
    Reply exchangeCode(const std::string& code, const std::string& proof = verifier,
                       const std::string& to = redirect) {
        return exchange({{"grant_type", "authorization_code"},
                         {"code", code},
                         {"code_verifier", proof},
                         {"redirect_uri", to}});
    }
    Reply refresh(const std::string& token) {
        return exchange({{"grant_type", "refresh_token"}, {"refresh_token", token}});
    }
    static std::string member(const Reply& reply, const char* name) {
        return std::string(boost::json::parse(reply.body).at(name).as_string());
    }
    long driveStatus(const std::string& token) {
        client.setToken(token);
        return client.get("https://www.googleapis.com/drive/v3/files/root").status;
    }
};

TEST_F(SandboxIdentity, givesATokenForACodeWithItsProof) {
    const Reply reply = exchangeCode(code());
    ASSERT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(member(reply, "scope"), driveScope);
    EXPECT_FALSE(member(reply, "refresh_token").empty());
    EXPECT_EQ(driveStatus(member(reply, "access_token")), 200);
}

TEST_F(SandboxIdentity, takesACodeOnce) {
    const std::string once = code();
    EXPECT_EQ(exchangeCode(once).status, 200);
    EXPECT_EQ(exchangeCode(once).status, 400);
}

TEST_F(SandboxIdentity, refusesAWrongProofOrAnotherRedirectAddress) {
    EXPECT_EQ(exchangeCode(code(), "another-verifier").status, 400);
    EXPECT_EQ(exchangeCode(code(), verifier, redirect + "/").status, 400);
}

TEST_F(SandboxIdentity, refusesAnotherClient) {
    known.secret = "wrong";
    EXPECT_EQ(exchangeCode(code()).status, 401);
}

TEST_F(SandboxIdentity, refreshesUntilTheGrantIsRevoked) {
    const SandboxToken token = sandbox.identity().issueToken();
    const Reply reply = refresh(token.refreshToken);
    EXPECT_EQ(driveStatus(member(reply, "access_token")), 200);
    EXPECT_FALSE(boost::json::parse(reply.body).as_object().contains("refresh_token"));
    sandbox.identity().revokeEverything();
    const Reply refused = refresh(token.refreshToken);
    EXPECT_EQ(refused.status, 400);
    EXPECT_EQ(member(refused, "error"), "invalid_grant");
}

TEST_F(SandboxIdentity, rotatesRefreshTokensWhenToldTo) {
    sandbox.identity().setSignIn({.rotatesRefreshToken = true, .namesScope = false});
    const SandboxToken token = sandbox.identity().issueToken();
    const Reply reply = refresh(token.refreshToken);
    EXPECT_FALSE(boost::json::parse(reply.body).as_object().contains("scope"));
    EXPECT_EQ(refresh(token.refreshToken).status, 400);
    EXPECT_EQ(refresh(member(reply, "refresh_token")).status, 200);
}

TEST_F(SandboxIdentity, refusesATokenAfterItsEnd) {
    const std::string token = sandbox.identity().issueToken(std::chrono::seconds(60)).accessToken;
    now = 1059;
    EXPECT_EQ(driveStatus(token), 200);
    now = 1060;
    EXPECT_EQ(driveStatus(token), 401);
}

TEST_F(SandboxIdentity, comesBackWithTheStateAndACodeOrARefusal) {
    EXPECT_EQ(firstValue(redirected(consentAddress()), "state"), "s1");
    sandbox.identity().setSignIn({.consent = ConsentAnswer::denied});
    EXPECT_EQ(redirected(consentAddress()), (NamedValues{{"state", "s1"}, {"error", "access_denied"}}));
}

TEST_F(SandboxIdentity, showsAPageWithBothAnswers) {
    sandbox.identity().setSignIn({.consent = ConsentAnswer::page});
    const Reply page = client.get(consentAddress());
    EXPECT_EQ(page.status, 200);
    EXPECT_THAT(page.body, HasSubstr("ada@example.com"));
    EXPECT_TRUE(firstValue(redirected(consentAddress() + "&decision=allow"), "code"));
    EXPECT_EQ(firstValue(redirected(consentAddress() + "&decision=deny"), "error"), "access_denied");
}

TEST_F(SandboxIdentity, refusesAConsentAddressThatLacksSomething) {
    EXPECT_EQ(client.get(consentAddress("")).status, 400);
    known.id = "other";
    EXPECT_EQ(client.get(consentAddress()).status, 400);
}

TEST_F(SandboxIdentity, grantsLessThanWasAskedForWhenToldTo) {
    sandbox.identity().setSignIn({.grantedScope = "openid", .grantsRefreshToken = false});
    const Reply reply = exchangeCode(code());
    EXPECT_EQ(member(reply, "scope"), "openid");
    EXPECT_FALSE(boost::json::parse(reply.body).as_object().contains("refresh_token"));
}

TEST_F(SandboxIdentity, signsInTheAccountThatIsHintedAt) {
    sandbox.addAccount({.sub = "2", .email = "bob@example.com", .name = ""});
    const std::string scope = std::string(profileScopes) + " " + std::string(driveScope);
    const auto back = redirected(consentAddress(scope, "&login_hint=bob%40example.com"));
    client.setToken(member(exchangeCode(firstValue(back, "code").value()), "access_token"));
    const Reply profile = client.get("https://openidconnect.googleapis.com/v1/userinfo");
    EXPECT_EQ(profile.body, R"({"sub":"2","email":"bob@example.com","email_verified":true})");
}

TEST_F(SandboxIdentity, keepsTheMailThatIsSent) {
    client.setToken(sandbox.identity().issueToken().accessToken);
    const std::string address = "https://gmail.googleapis.com/gmail/v1/users/me/messages/send";
    const std::string mime = "Subject: \xFB\xFF\r\n\r\ntext";
    EXPECT_EQ(client.post(address, R"({"raw":")" + base64URLEncoded(mime) + R"("})").status, 200);
    EXPECT_EQ(client.post(address, R"({"raw":")" + base64Encoded(mime) + R"("})").status, 400);
    ASSERT_EQ(sandbox.mail().size(), 1);
    EXPECT_EQ(sandbox.mail()[0].mime, mime);
    EXPECT_EQ(sandbox.mail()[0].account, Person().sub);

    client.setToken(sandbox.identity().issueToken({}, std::string(driveScope)).accessToken);
    EXPECT_EQ(client.post(address, R"({"raw":"QQ"})").status, 403);
}

} // namespace
} // namespace marrowbox::test
