#include "GoogleOAuth/SignInCallback.h"

#include <gtest/gtest.h>

namespace marrowbox::test {

using namespace SignInCallback;

namespace {

const std::string state = "S-tate_1";

Verdict judged(const std::string& line) {
    return judge(line + "\r\nHost: 127.0.0.1\r\n\r\n", state);
}

void expectInvalid(const std::string& line) {
    const Verdict verdict = judged(line);
    EXPECT_EQ(verdict.status, "400 Bad Request") << line;
    EXPECT_EQ(verdict.text, "Invalid sign-in callback.") << line;
    EXPECT_TRUE(std::holds_alternative<Stray>(verdict.meaning)) << line;
}

std::string codeOf(const std::string& line) {
    const Verdict verdict = judged(line);
    const auto* granted = std::get_if<Granted>(&verdict.meaning);
    return granted != nullptr ? granted->code : "no code: " + verdict.text;
}

} // namespace

TEST(SignInCallback, takesTheCode) {
    const Verdict verdict = judged("GET /?state=S-tate_1&code=4%2F0abc&scope=openid HTTP/1.1");
    EXPECT_EQ(verdict.status, "200 OK");
    EXPECT_EQ(verdict.text, "You can return to Marrowbox. This window may be closed.");
    EXPECT_EQ(std::get<Granted>(verdict.meaning).code, "4/0abc");
}

TEST(SignInCallback, takesAnyOrderAndSpelling) {
    EXPECT_EQ(codeOf("GET /?code=c&state=S-tate_1 HTTP/1.1"), "c");
    EXPECT_EQ(codeOf("GET ?code=c&state=S-tate_1 HTTP/1.1"), "c");
    EXPECT_EQ(codeOf("GET /?code=c&%73tate=S%2Dtate_1 HTTP/1.1"), "c");
    EXPECT_EQ(codeOf("GET /?code=c&state=S-tate_1#fragment HTTP/1.1"), "c");
    EXPECT_EQ(codeOf("GET   /?code=c&state=S-tate_1"), "c");
    EXPECT_EQ(codeOf("GET /?&code=c&&state=S-tate_1& HTTP/1.1"), "c");
}

TEST(SignInCallback, takesTheFirstOfTwoCodes) {
    EXPECT_EQ(codeOf("GET /?code=1&code=2&state=S-tate_1 HTTP/1.1"), "1");
}

TEST(SignInCallback, takesAnEmptyCode) {
    EXPECT_EQ(codeOf("GET /?code=&state=S-tate_1 HTTP/1.1"), "");
}

TEST(SignInCallback, leavesAPlusAsItIs) {
    EXPECT_EQ(codeOf("GET /?code=a+b&state=S-tate_1 HTTP/1.1"), "a+b");
}

TEST(SignInCallback, goesOnWithoutACode) {
    for (const char* query : {"state=S-tate_1", "state=S-tate_1&code", "state=S-tate_1&Code=c"}) {
        const Verdict verdict = judged("GET /?" + std::string(query) + " HTTP/1.1");
        EXPECT_EQ(verdict.status, "400 Bad Request");
        EXPECT_EQ(verdict.text, "Missing authorization code.");
        EXPECT_TRUE(std::holds_alternative<Stray>(verdict.meaning));
    }
}

TEST(SignInCallback, seesARefusal) {
    for (const char* query : {"error=access_denied&state=S-tate_1", "state=S-tate_1&code=c&error"}) {
        const Verdict verdict = judged("GET /?" + std::string(query) + " HTTP/1.1");
        EXPECT_EQ(verdict.status, "200 OK");
        EXPECT_EQ(verdict.text, "Sign-in cancelled. Return to Marrowbox.");
        EXPECT_TRUE(std::holds_alternative<Denied>(verdict.meaning));
    }
}

TEST(SignInCallback, refusesAnyOtherMethod) {
    for (const char* method : {"POST", "HEAD", "get", "GETX", "OPTIONS"})
        expectInvalid(std::string(method) + " /?state=S-tate_1&code=c HTTP/1.1");
}

TEST(SignInCallback, refusesAnyOtherPath) {
    for (const char* path : {"/favicon.ico", "//", "/callback", "/%2F", "*", "http://127.0.0.1/", "/."})
        expectInvalid("GET " + std::string(path) + "?state=S-tate_1&code=c HTTP/1.1");
}

TEST(SignInCallback, refusesAnyOtherState) {
    for (const char* query : {"code=c", "state=&code=c", "state&code=c", "state=s-tate_1&code=c",
                              "state=S-tate_1x&code=c", "state=S-tate_1&state=S-tate_1&code=c",
                              "state=S-tate_1&state&code=c", "error=x", "", "state=S-tate_2"})
        expectInvalid("GET /?" + std::string(query) + " HTTP/1.1");
    expectInvalid("GET / HTTP/1.1");
    expectInvalid("GET /#?state=S-tate_1&code=c HTTP/1.1");
}

TEST(SignInCallback, refusesWhatIsNoRequest) {
    for (const std::string& line :
         {std::string(), std::string(" "), std::string("GET"), std::string("hello"),
          std::string("GET\t/?state=S-tate_1&code=c HTTP/1.1"), std::string("\x16\x03\x01\x02", 4),
          std::string("GET /?state=S-tate_1&code=%zz HTTP/1.1"),
          std::string("GET /?state=S-tate_1&code=%4 HTTP/1.1"),
          std::string("GET /?state=S-tate_1&code=\xFF HTTP/1.1"),
          std::string("GET /?state=S-tate_1&code=\0c HTTP/1.1", 37)})
        expectInvalid(line);
    EXPECT_EQ(judge("", state).text, "Invalid sign-in callback.");
}

TEST(SignInCallback, writesOneWholeMessage) {
    EXPECT_EQ(message({"200 OK", "Grüße", Stray()}), "HTTP/1.1 200 OK\r\n"
                                                     "Content-Type: text/plain; charset=utf-8\r\n"
                                                     "Content-Length: 7\r\n"
                                                     "Cache-Control: no-store\r\n"
                                                     "Connection: close\r\n"
                                                     "\r\n"
                                                     "Grüße");
}

} // namespace marrowbox::test
