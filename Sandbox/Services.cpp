#include "Sandbox/Services.h"

#include "Sandbox/DriveService.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <stdexcept>

namespace marrowbox::sandbox {

namespace {

constexpr std::array<std::string_view, 6> hosts{"www.googleapis.com",    "docs.google.com",
                                                "oauth2.googleapis.com", "accounts.google.com",
                                                "gmail.googleapis.com",  "openidconnect.googleapis.com"};

Answer unauthorised() {
    Answer answer = googleError(401, "authError", "Invalid Credentials");
    answer.headers.emplace_back("WWW-Authenticate", "Bearer realm=\"https://accounts.google.com/\"");
    return answer;
}

Answer unknownPath() {
    return googleError(404, "notFound", "Not Found");
}

/// The message in a request to send; absent when the body is not of the form that the service takes.
std::optional<std::string> rawMessage(const std::string& body) {
    boost::system::error_code malformed;
    const boost::json::value json = boost::json::parse(body, malformed);
    if (malformed || !json.is_object())
        return std::nullopt;
    const boost::json::value* raw = json.as_object().if_contains("raw");
    if (raw == nullptr || !raw->is_string())
        return std::nullopt;
    return base64URLDecoded(std::string_view(raw->as_string()));
}

} // namespace

bool Services::serves(std::string_view host) {
    return std::find(hosts.begin(), hosts.end(), host) != hosts.end();
}

Drive& Services::addAccount(Person person) {
    const std::lock_guard lock(mutex_);
    const std::string prefix =
        accounts_.empty() ? "" : "account" + std::to_string(accounts_.size() + 1) + "_";
    accounts_.emplace_back(person.sub, prefix);
    identity_.addPerson(std::move(person));
    return accounts_.back().drive;
}

Drive& Services::drive(std::string_view sub) {
    const std::lock_guard lock(mutex_);
    for (Account& account : accounts_)
        if (sub.empty() || account.sub == sub)
            return account.drive;
    throw std::out_of_range("no account " + std::string(sub));
}

std::vector<SentMail> Services::mail() const {
    const std::lock_guard lock(mutex_);
    return mail_;
}

Answer Services::answer(const RecordedRequest& request) {
    if (request.host == "oauth2.googleapis.com")
        return request.path == "/token" ? identity_.tokenEndpoint(request) : unknownPath();
    if (request.host == "accounts.google.com")
        return request.path == "/o/oauth2/v2/auth" ? identity_.consentEndpoint(request) : unknownPath();
    if (request.host == "openidconnect.googleapis.com")
        return request.path == "/v1/userinfo" ? identity_.userinfo(request) : unknownPath();
    if (request.host == "gmail.googleapis.com")
        return request.path == "/gmail/v1/users/me/messages/send" ? mailRequest(request) : unknownPath();
    return driveRequest(request);
}

Answer Services::driveRequest(const RecordedRequest& request) {
    const auto asking = identity_.bearer(request);
    if (!asking)
        return unauthorised();
    Drive& owned = drive(asking->person.sub);
    if (request.host == "docs.google.com")
        return exportLinkAnswer(owned, request);
    return request.path.starts_with("/drive/v3/") ? driveAnswer(owned, *asking, request) : unknownPath();
}

Answer Services::mailRequest(const RecordedRequest& request) {
    const auto asking = identity_.bearer(request);
    if (!asking)
        return unauthorised();
    if (!asking->allows(sendScope))
        return googleError(403, "insufficientPermissions", "Request had insufficient authentication scopes.");
    if (request.method != "POST")
        return unknownPath();
    const auto message = rawMessage(request.body);
    if (!message || message->empty())
        return googleError(400, "invalidArgument", "'raw' RFC822 payload message string is required.");
    const std::lock_guard lock(mutex_);
    mail_.push_back({asking->person.sub, *message});
    const std::string id = "message" + std::to_string(mail_.size());
    return Answer::json(R"({"id":")" + id + R"(","threadId":")" + id + R"(","labelIds":["SENT"]})");
}

} // namespace marrowbox::sandbox
