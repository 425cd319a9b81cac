#include "GoogleOAuth/HTTP.h"

#include "Models/BackupError.h"
#include "Platform/Cancellation.h"

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cmath>
#include <cstdlib>

namespace marrowbox {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr double longestWait = 30;

bool isSuccess(int status) {
    return status >= 200 && status <= 299;
}

bool mayRepeat(std::string_view method, int attempt) {
    return method == "GET" && attempt < HTTPRetry::attempts - 1;
}

// 2, 4 and then 8 seconds.
double exponentialWait(int attempt) {
    return std::ldexp(2.0, attempt);
}

/// Numbers are written with a point in HTTP, whatever the user's language.
locale_t neutralLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

asio::awaitable<std::string> perform(HTTPSend send, Wait wait, std::shared_ptr<const HTTPRequest> request,
                                     std::stop_token stop) {
    for (int attempt = 0;; ++attempt) {
        throwIfCancelled(stop);
        std::optional<Seconds> pause;
        try {
            HTTPResponse response = co_await send(request, stop);
            if (isSuccess(response.status))
                co_return std::move(response.body);
            if (response.status == 0)
                throw BackupError("The server returned an invalid response.");
            pause = HTTPRetry::wait(request->method, attempt, response.status, response.retryAfter);
            if (!pause)
                throw BackupError(HTTPRetry::refusal(response.status));
        } catch (const TransportError& error) {
            pause = HTTPRetry::wait(request->method, attempt, error.code());
            if (!pause)
                throw;
        }
        if (*pause > Seconds::zero())
            co_await wait(*pause, stop);
    }
}

} // namespace

std::optional<double> HTTPRetry::seconds(std::string_view retryAfter) {
    // The library's parser would skip white space.
    if (retryAfter.empty() || std::isspace(static_cast<unsigned char>(retryAfter.front())))
        return std::nullopt;
    const std::string text(retryAfter);
    char* end = nullptr;
    const double number = strtod_l(text.c_str(), &end, neutralLocale());
    if (end != text.c_str() + text.size() || std::isnan(number))
        return std::nullopt;
    return number;
}

std::optional<Seconds> HTTPRetry::wait(std::string_view method, int attempt, int status,
                                       std::string_view retryAfter) {
    if (!mayRepeat(method, attempt) || (status != 429 && status < 500))
        return std::nullopt;
    const double told = seconds(retryAfter).value_or(exponentialWait(attempt));
    return Seconds(std::clamp(told, 0.0, longestWait));
}

std::optional<Seconds> HTTPRetry::wait(std::string_view method, int attempt, TransportErrorCode code) {
    if (!mayRepeat(method, attempt) || code == TransportErrorCode::cancelled)
        return std::nullopt;
    return Seconds(exponentialWait(attempt));
}

std::string HTTPRetry::refusal(int status) {
    switch (status) {
    case 429:
        return "The service is rate limiting requests. Please try again later.";
    case 403:
        return "Access was denied. Check account permissions and that the required Google API is enabled.";
    case 401:
        return "Google sign-in expired or was revoked. Reconnect the account in Settings.";
    default:
        return "The service returned HTTP " + std::to_string(status) + ".";
    }
}

HTTP::HTTP(HTTPSession& session, Wait wait)
    : HTTP([&session](std::shared_ptr<const HTTPRequest> request,
                      std::stop_token stop) { return session.send(std::move(request), std::move(stop)); },
           std::move(wait)) {
    keepsOrder_ = true;
}

HTTP::HTTP(HTTPSend send, Wait wait) : send_(std::move(send)), wait_(std::move(wait)) {
}

asio::awaitable<std::string> HTTP::data(HTTPRequest request, std::stop_token stop) const {
    // Copies, so that the value may go away while the request is under way.
    return perform(send_, wait_, std::make_shared<const HTTPRequest>(std::move(request)), std::move(stop));
}

} // namespace marrowbox
