// Whom a backup talks to: nobody who cannot prove to be the service, whatever else he can do on the way.
#include "GoogleBackup.h"
#include "GoogleOAuth/TransportError.h"
#include "Sandbox/Fault.h"
#include "Sandbox/RequestMatch.h"
#include "Support/Coroutine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using namespace sandbox;
using test::await;
using test::GoogleBackup;
using testing::IsEmpty;

constexpr auto bearer = "Bearer of-everything";

std::string nameOf(CertificateFault fault) {
    switch (fault) {
    case CertificateFault::expired:
        return "expired";
    case CertificateFault::selfSigned:
        return "selfSigned";
    case CertificateFault::otherHost:
        return "ofAnotherHost";
    case CertificateFault::none:
        return "good";
    }
    return "";
}

/// One session that trusts the sandbox's authority.
struct Client {
    Client() {
        sandbox.writeAuthority(folder / "authority.pem");
        HTTPSettings settings;
        settings.certificateFile = folder / "authority.pem";
        settings.proxy = sandbox.proxyURL();
        session.emplace(settings);
    }
    HTTPResponse get(const std::string& url) {
        HTTPRequest request{.method = "GET", .url = url, .headers = {{"Authorization", bearer}}, .body = {}};
        return await(session->send(std::make_shared<const HTTPRequest>(std::move(request)), {}));
    }

    test::ScratchFolder folder;
    SandboxServer sandbox;
    std::optional<HTTPSession> session;
};

class BadCertificate : public testing::TestWithParam<CertificateFault> {};

constexpr auto profile = "https://openidconnect.googleapis.com/v1/userinfo";

} // namespace

TEST_P(BadCertificate, isShownNoRequest) {
    Client client;
    client.sandbox.showCertificates(GetParam());
    try {
        client.get(profile);
        FAIL() << "nothing was thrown";
    } catch (const TransportError& error) {
        EXPECT_EQ(error.code(), TransportErrorCode::secureConnectionFailed) << error.what();
        EXPECT_EQ(std::string(error.what()).find(bearer), std::string::npos);
    }
    EXPECT_THAT(client.sandbox.requests().lines(), IsEmpty());
    EXPECT_EQ(client.sandbox.requests().connectionCount(), 1U);

    client.sandbox.showCertificates(CertificateFault::none);
    EXPECT_EQ(client.get(profile).status, 401) << "the same session talks to a server that proves itself";
}

TEST_P(BadCertificate, endsABackupBeforeRcloneShowsItsToken) {
    GoogleBackup backup;
    const std::string file = backup.drive.addFile(backup.folder, "first", "one");
    // Our own connection stands already. rclone makes its own after the listing.
    backup.sandbox.inject(
        Fault::on(listing(backup.folder)).always().run([&] { backup.sandbox.showCertificates(GetParam()); }));
    EXPECT_EQ(backup.refusal(), "rclone could not download this batch (exit 1). Check connectivity, download "
                                "permissions, and Google export limits. Earlier backups are safe.");
    EXPECT_EQ(backup.rcloneCalls(), 0U);
    EXPECT_EQ(backup.sandbox.requests().count(media(file)), 0U);

    backup.sandbox.clearFaults();
    backup.sandbox.showCertificates(CertificateFault::none);
    backup.expectHolds(backup.run(), {"first"});
    backup.expectSettled(1);
}

INSTANTIATE_TEST_SUITE_P(, BadCertificate,
                         testing::Values(CertificateFault::expired, CertificateFault::selfSigned,
                                         CertificateFault::otherHost),
                         [](const auto& info) { return nameOf(info.param); });

TEST(Redirect, isNotFollowedWithTheToken) {
    for (const unsigned status : {301U, 302U, 303U, 307U, 308U}) {
        SCOPED_TRACE(status);
        Client client;
        client.sandbox.inject(Fault::on(userinfoCall())
                                  .answer(status)
                                  .header("Location", "https://www.googleapis.com/drive/v3/files/root"));
        EXPECT_EQ(client.get(profile).status, int(status));
        EXPECT_EQ(client.sandbox.requests().count(anyRequest()), 1U);
        EXPECT_EQ(client.sandbox.requests().connectionCount(), 1U);
    }
}

TEST(Redirect, ofAListingEndsTheBackup) {
    GoogleBackup backup;
    backup.drive.addFile(backup.folder, "first", "one");
    backup.sandbox.inject(Fault::on(listing(backup.folder))
                              .answer(302)
                              .header("Location", "https://gmail.googleapis.com/drive/v3/files"));
    EXPECT_EQ(backup.refusal(), "The service returned HTTP 302.");
    EXPECT_EQ(backup.sandbox.requests().count(toHost("gmail.googleapis.com")), 0U);
    backup.expectHolds(backup.run(), {"first"});
}

TEST(Redirect, toPlainHTTPReachesNobody) {
    Client client;
    client.sandbox.inject(
        Fault::on(userinfoCall()).answer(302).header("Location", "http://www.googleapis.com/"));
    EXPECT_EQ(client.get(profile).status, 302);
    EXPECT_EQ(client.sandbox.requests().connectionCount(), 1U);
    EXPECT_THAT(client.sandbox.requests().refusedHosts(), IsEmpty());
}

} // namespace marrowbox
