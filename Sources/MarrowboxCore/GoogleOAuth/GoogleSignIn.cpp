#include "GoogleOAuth/GoogleSignIn.h"

#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/GoogleScopes.h"
#include "GoogleOAuth/SignInListener.h"
#include "Models/BackupError.h"
#include "Platform/Cancellation.h"
#include "Platform/Digest.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <map>

namespace marrowbox {

namespace {

constexpr std::chrono::seconds timeLimit{300};

/// What one sign-in knows of itself.
struct Attempt {
    std::string verifier;
    std::string state;
    std::string redirect;
};

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += text.empty() ? part : " " + part;
    return text;
}

std::string consentAddress(const SignInRequest& request, const Attempt& attempt) {
    std::map<std::string, std::string> query{
        {"client_id", request.client.client_id},
        {"redirect_uri", attempt.redirect},
        {"response_type", "code"},
        {"scope", joined(GoogleScopes::requested(request.sendEmail))},
        {"access_type", "offline"},
        {"prompt", "consent select_account"},
        {"state", attempt.state},
        {"code_challenge", WebEncoding::base64URL(sha256(attempt.verifier))},
        {"code_challenge_method", "S256"},
    };
    if (request.hint)
        query.emplace("login_hint", *request.hint);
    return "https://accounts.google.com/o/oauth2/v2/auth?" + WebEncoding::form(query);
}

std::map<std::string, std::string> exchangeFields(const OAuthClient& client, const Attempt& attempt,
                                                  std::string code) {
    std::map<std::string, std::string> fields{
        {"client_id", client.client_id},      {"code", std::move(code)},
        {"code_verifier", attempt.verifier},  {"redirect_uri", attempt.redirect},
        {"grant_type", "authorization_code"},
    };
    if (client.client_secret)
        fields.emplace("client_secret", *client.client_secret);
    return fields;
}

std::exception_ptr failure(const std::string& sentence) {
    return std::make_exception_ptr(BackupError(sentence));
}

asio::awaitable<void> endInTime(std::shared_ptr<SignInListener> listener, Wait wait, std::stop_token stop) {
    co_await wait(timeLimit, std::move(stop));
    listener->finish(failure("Google sign-in timed out. Please try again."));
}

/// A sign-in's port and its time limit, which end with it.
class Session {
  public:
    Session(const asio::any_io_executor& executor, const std::string& state, const Wait& wait)
        : listener_(std::make_shared<SignInListener>(executor, state, wait)) {
        listener_->start();
    }
    Session(const Session&) = delete;
    ~Session() {
        listener_->close();
        limit_.request_stop();
    }

    void limitTime(const asio::any_io_executor& executor, const Wait& wait) {
        asio::co_spawn(executor, endInTime(listener_, wait, limit_.get_token()), timeLimitEnded(listener_));
    }
    const std::shared_ptr<SignInListener>& listener() const { return listener_; }

  private:
    static std::function<void(std::exception_ptr)> timeLimitEnded(std::weak_ptr<SignInListener> weak) {
        // Cancelled when the sign-in is over, which makes this outcome one too late; any other failure is
        // news.
        return [weak = std::move(weak)](std::exception_ptr thrown) {
            if (const auto listener = weak.lock(); listener && thrown)
                listener->finish(std::move(thrown));
        };
    }

    std::shared_ptr<SignInListener> listener_;
    std::stop_source limit_;
};

asio::awaitable<OAuthToken> signIn(GoogleSignIn::Surroundings around, SignInRequest request,
                                   std::stop_token stop) {
    throwIfCancelled(stop);
    Attempt attempt;
    attempt.verifier = WebEncoding::random(around.random);
    attempt.state = WebEncoding::random(around.random);
    Session session(around.executor, attempt.state, around.wait);
    const auto listener = session.listener();
    attempt.redirect = "http://127.0.0.1:" + std::to_string(listener->port());

    session.limitTime(around.executor, around.wait);
    const std::stop_callback onStop(stop, [executor = around.executor, listener] {
        asio::post(executor, [listener] { listener->finish(std::make_exception_ptr(CancellationError())); });
    });
    if (!around.openBrowser(consentAddress(request, attempt)))
        listener->finish(failure("Could not open your browser."));
    std::string code = co_await listener->code();

    auto fields = exchangeFields(request.client, attempt, std::move(code));
    OAuthToken token =
        co_await GoogleAuth::exchange(around.http, std::move(fields), std::nullopt, around.clock, stop);
    co_return token;
}

} // namespace

asio::awaitable<OAuthToken> GoogleSignIn::authorize(SignInRequest request, std::stop_token stop) const {
    return asio::co_spawn(surroundings_.executor, signIn(surroundings_, std::move(request), std::move(stop)),
                          asio::use_awaitable);
}

} // namespace marrowbox
