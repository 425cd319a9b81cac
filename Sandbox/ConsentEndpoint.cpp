// The part of the identity service that a browser sees.
#include "Sandbox/Identity.h"
#include "Sandbox/RandomToken.h"

namespace marrowbox::sandbox {

namespace {

bool isLoopbackAddress(const std::string& address) {
    return address.starts_with("http://127.0.0.1:") || address.starts_with("http://localhost:");
}

/// What is wrong with a consent address; empty when nothing is.
std::string complaint(const RecordedRequest& request, const ClientIdentity& client) {
    const auto item = [&](std::string_view name) { return request.queryItem(name).value_or(""); };
    if (item("client_id") != client.id)
        return "invalid_client";
    if (!isLoopbackAddress(item("redirect_uri")))
        return "redirect_uri_mismatch";
    if (item("response_type") != "code")
        return "unsupported_response_type";
    if (item("scope").empty())
        return "invalid_scope";
    if (item("code_challenge_method") != "S256" || item("code_challenge").size() != 43)
        return "invalid_request";
    return {};
}

std::string redirectAddress(const RecordedRequest& request, const std::string& outcome) {
    std::string address = request.queryItem("redirect_uri").value_or("") + "?";
    if (const auto state = request.queryItem("state"))
        address += "state=" + percentEncoded(*state) + "&";
    return address + outcome;
}

std::string escapedForHTML(const std::string& text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '&')
            escaped += "&amp;";
        else if (byte == '<')
            escaped += "&lt;";
        else if (byte == '"')
            escaped += "&quot;";
        else
            escaped += byte;
    }
    return escaped;
}

std::string consentPage(const RecordedRequest& request, const Person& person) {
    const std::string here = escapedForHTML("https://" + request.host + request.target);
    return "<!doctype html><html lang=\"en\"><title>Sign in (sandbox)</title><h1>Sign in (sandbox)</h1><p>" +
           escapedForHTML(person.email) + "<p>" + escapedForHTML(request.queryItem("scope").value_or("")) +
           "<p><a href=\"" + here + "&amp;decision=allow\">Allow</a> <a href=\"" + here +
           "&amp;decision=deny\">Deny</a></html>";
}

} // namespace

std::string Identity::chosenAccount(const RecordedRequest& request) const {
    if (!settings_.account.empty())
        return settings_.account;
    const auto hint = request.queryItem("login_hint");
    for (const Person& candidate : people_)
        if (hint && (candidate.email == *hint || candidate.sub == *hint))
            return candidate.sub;
    return people_.at(0).sub;
}

Answer Identity::decided(const RecordedRequest& request, bool isGranted) {
    if (!isGranted)
        return Answer::redirect(redirectAddress(request, "error=access_denied"));
    Grant grant;
    grant.sub = chosenAccount(request);
    grant.scope = settings_.grantedScope.value_or(request.queryItem("scope").value_or(""));
    grant.challenge = request.queryItem("code_challenge").value_or("");
    grant.redirectURI = request.queryItem("redirect_uri").value_or("");
    grant.isOffline = request.queryItem("access_type") == "offline";
    const std::string code = randomToken("4/0");
    const std::string scope = grant.scope;
    codes_.emplace(code, std::move(grant));
    return Answer::redirect(
        redirectAddress(request, "code=" + percentEncoded(code) + "&scope=" + percentEncoded(scope)));
}

Answer Identity::consentEndpoint(const RecordedRequest& request) {
    if (const std::string wrong = complaint(request, client_); !wrong.empty())
        return Answer::html("<!doctype html><title>Error 400</title>Error 400: " + wrong, 400);
    const std::lock_guard lock(mutex_);
    if (settings_.consent != ConsentAnswer::page)
        return decided(request, settings_.consent == ConsentAnswer::granted);
    if (const auto decision = request.queryItem("decision"))
        return decided(request, *decision == "allow");
    const Person* chosen = person(chosenAccount(request));
    return Answer::html(consentPage(request, chosen != nullptr ? *chosen : Person{}));
}

} // namespace marrowbox::sandbox
