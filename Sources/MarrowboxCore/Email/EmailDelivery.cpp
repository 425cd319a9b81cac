#include "Email/EmailDelivery.h"

#include "GoogleOAuth/GoogleScopes.h"
#include "GoogleOAuth/WebEncoding.h"
#include "Models/BackupError.h"
#include "Models/JSONWriter.h"

#include <algorithm>
#include <boost/describe/class.hpp>
#include <cmath>

namespace marrowbox {

namespace {

constexpr const char* endpoint = "https://gmail.googleapis.com/gmail/v1/users/me/messages/send";

/// What the endpoint takes.
struct MessageBody {
    std::string raw; ///< The message in URL-safe Base64.
};
BOOST_DESCRIBE_STRUCT(MessageBody, (), (raw))

/// The account that sends. Throws BackupError when the settings, the account or the lack of an authoriser
/// rule it out.
GoogleAccount senderOf(const EmailSettings& settings, const std::vector<GoogleAccount>& accounts,
                       const std::shared_ptr<const GoogleAuth>& auth) {
    if (!EmailMessage::validAddress(settings.recipient))
        throw BackupError("Set a valid notification recipient in Settings.");
    if (settings.provider != EmailProvider::gmail)
        throw BackupError("Email notifications are disabled.");
    const auto account = std::ranges::find(accounts, settings.accountID, &GoogleAccount::id);
    if (!auth || account == accounts.end() || !account->canSendEmail)
        throw BackupError("Enable Gmail sending permission for the notification account in Settings.");
    return *account;
}

void requireSendScope(const OAuthToken& token) {
    const std::vector<std::string> scopes = GoogleScopes::granted(token.scope);
    if (std::ranges::find(scopes, GoogleScopes::send) == scopes.end())
        throw BackupError("Reconnect with Gmail sending permission.");
}

HTTPRequest requestOf(const std::string& mime, const OAuthToken& token) {
    return {
        .method = "POST",
        .url = endpoint,
        .headers = {{"Authorization", "Bearer " + token.accessToken}, {"Content-Type", "application/json"}},
        .body = encodeJSON(MessageBody{WebEncoding::base64URL(mime)}, JSONStyle::compact)};
}

asio::awaitable<void> deliver(std::shared_ptr<const GoogleAuth> auth, HTTP http, EmailMessage message,
                              Uuid id, EmailSettings settings, std::vector<GoogleAccount> accounts,
                              std::stop_token stop) {
    const GoogleAccount sender = senderOf(settings, accounts, auth);
    const OAuthToken token = co_await auth->token(settings.accountID, stop);
    requireSendScope(token);
    HTTPRequest request = requestOf(message.mime(sender.email, settings.recipient, id), token);
    const std::string ignoredAnswer = co_await http.data(std::move(request), std::move(stop));
}

} // namespace

asio::awaitable<void> EmailDelivery::send(EmailMessage message, Uuid id, EmailSettings settings,
                                          std::vector<GoogleAccount> accounts, std::stop_token stop) const {
    return deliver(auth, http, std::move(message), id, std::move(settings), std::move(accounts),
                   std::move(stop));
}

asio::awaitable<void> EmailDelivery::send(RunRecord run, EmailSettings settings,
                                          std::vector<GoogleAccount> accounts, std::stop_token stop) const {
    return deliver(auth, http, EmailMessage::of(run, formats, clock()), run.id, std::move(settings),
                   std::move(accounts), std::move(stop));
}

double EmailDelivery::backOff(std::int64_t attempts) {
    constexpr double sixHours = 21'600;
    const auto doublings = static_cast<int>(std::clamp<std::int64_t>(attempts, 0, 9));
    return std::min(std::ldexp(60.0, doublings), sixHours);
}

} // namespace marrowbox
