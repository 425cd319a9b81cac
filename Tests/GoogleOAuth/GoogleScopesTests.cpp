#include "GoogleOAuth/GoogleScopes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(GoogleScopes, asksForFourScopesWithoutMail) {
    EXPECT_THAT(GoogleScopes::requested(false),
                ElementsAre("openid", "https://www.googleapis.com/auth/userinfo.email",
                            "https://www.googleapis.com/auth/userinfo.profile",
                            "https://www.googleapis.com/auth/drive.readonly"));
}

TEST(GoogleScopes, asksForSendingMailLast) {
    const auto scopes = GoogleScopes::requested(true);
    EXPECT_EQ(scopes.size(), 5U);
    EXPECT_EQ(scopes.back(), "https://www.googleapis.com/auth/gmail.send");
}

TEST(GoogleScopes, splitsAGrantAtBlanks) {
    EXPECT_THAT(GoogleScopes::granted("a b"), ElementsAre("a", "b"));
    EXPECT_THAT(GoogleScopes::granted("  a   b "), ElementsAre("a", "b"));
    EXPECT_THAT(GoogleScopes::granted(""), IsEmpty());
    EXPECT_THAT(GoogleScopes::granted(" "), IsEmpty());
}

} // namespace marrowbox::test
