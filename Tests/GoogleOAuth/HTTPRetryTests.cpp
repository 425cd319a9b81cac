#include "GoogleOAuth/HTTP.h"

#include <gtest/gtest.h>
#include <limits>

namespace marrowbox::test {

namespace {

struct StatusRow {
    const char* name;
    const char* method;
    int attempt;
    int status;
    const char* retryAfter;
    std::optional<double> seconds;
};

std::optional<double> secondsOf(std::optional<std::chrono::duration<double>> wait) {
    if (!wait)
        return std::nullopt;
    return wait->count();
}

} // namespace

TEST(HTTPRetry, decidesByMethodAttemptStatusAndHeader) {
    const StatusRow rows[] = {
        {"first refusal", "GET", 0, 503, "", 2.0},
        {"second refusal", "GET", 1, 503, "", 4.0},
        {"third refusal", "GET", 2, 503, "", 8.0},
        {"fourth refusal is the last", "GET", 3, 503, "", std::nullopt},
        {"500 is a server's fault", "GET", 0, 500, "", 2.0},
        {"599 too", "GET", 0, 599, "", 2.0},
        {"499 is not", "GET", 0, 499, "", std::nullopt},
        {"429 asks for patience", "GET", 0, 429, "", 2.0},
        {"428 does not", "GET", 0, 428, "", std::nullopt},
        {"401", "GET", 0, 401, "1", std::nullopt},
        {"403", "GET", 0, 403, "1", std::nullopt},
        {"404", "GET", 0, 404, "1", std::nullopt},
        {"a redirect", "GET", 0, 302, "1", std::nullopt},
        {"POST", "POST", 0, 503, "1", std::nullopt},
        {"no method", "", 0, 503, "1", std::nullopt},
        {"another spelling of GET", "get", 0, 503, "1", std::nullopt},
        {"capped", "GET", 0, 429, "120", 30.0},
        {"just under the cap", "GET", 0, 429, "29.5", 29.5},
        {"a fraction", "GET", 2, 503, "1.5", 1.5},
        {"zero", "GET", 0, 429, "0", 0.0},
        {"negative", "GET", 0, 429, "-3", 0.0},
        {"infinite", "GET", 0, 429, "inf", 30.0},
        {"infinite and negative", "GET", 0, 429, "-inf", 0.0},
        {"not a number by its own word", "GET", 1, 429, "nan", 4.0},
        {"a date", "GET", 1, 429, "Wed, 21 Oct 2026 07:28:00 GMT", 4.0},
        {"leading blank", "GET", 0, 429, " 5", 2.0},
        {"trailing blank", "GET", 0, 429, "5 ", 2.0},
        {"a unit", "GET", 0, 429, "5s", 2.0},
    };
    for (const StatusRow& row : rows)
        EXPECT_EQ(secondsOf(HTTPRetry::wait(row.method, row.attempt, row.status, row.retryAfter)),
                  row.seconds)
            << row.name;
}

TEST(HTTPRetry, repeatsAGetAfterAnyFailureOfTheNetworkButACancel) {
    EXPECT_EQ(secondsOf(HTTPRetry::wait("GET", 0, TransportErrorCode::timedOut)), 2.0);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("GET", 1, TransportErrorCode::connectionLost)), 4.0);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("GET", 2, TransportErrorCode::other)), 8.0);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("GET", 3, TransportErrorCode::timedOut)), std::nullopt);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("GET", 0, TransportErrorCode::cancelled)), std::nullopt);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("POST", 0, TransportErrorCode::timedOut)), std::nullopt);
    EXPECT_EQ(secondsOf(HTTPRetry::wait("", 0, TransportErrorCode::timedOut)), std::nullopt);
}

TEST(HTTPRetry, readsARetryAfterOnlyWhenAllOfItIsANumber) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        std::string_view text;
        std::optional<double> seconds;
    } rows[] = {
        {"", std::nullopt},
        {"7", 7.0},
        {"+5", 5.0},
        {"1e2", 100.0},
        {"0x10", 16.0},
        {".5", 0.5},
        {"5.", 5.0},
        {"-0.25", -0.25},
        {"infinity", infinity},
        {"1e999", infinity},
        {"nan", std::nullopt},
        {"nan(1)", std::nullopt},
        {"\t5", std::nullopt},
        {"5,5", std::nullopt},
        {"1 2", std::nullopt},
        {"--5", std::nullopt},
        {"+", std::nullopt},
        {"e5", std::nullopt},
        {"five", std::nullopt},
        {std::string_view("5\0", 2), std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(HTTPRetry::seconds(row.text), row.seconds) << row.text;
}

TEST(HTTPRetry, saysWhatARefusalMeans) {
    EXPECT_EQ(HTTPRetry::refusal(429), "The service is rate limiting requests. Please try again later.");
    EXPECT_EQ(HTTPRetry::refusal(403),
              "Access was denied. Check account permissions and that the required Google API is enabled.");
    EXPECT_EQ(HTTPRetry::refusal(401),
              "Google sign-in expired or was revoked. Reconnect the account in Settings.");
    EXPECT_EQ(HTTPRetry::refusal(400), "The service returned HTTP 400.");
    EXPECT_EQ(HTTPRetry::refusal(304), "The service returned HTTP 304.");
}

} // namespace marrowbox::test
