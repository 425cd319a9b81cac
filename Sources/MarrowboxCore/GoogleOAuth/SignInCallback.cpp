#include "GoogleOAuth/SignInCallback.h"

#include "Models/PercentEncoding.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace marrowbox::SignInCallback {

namespace {

struct QueryItem {
    std::string name;
    std::optional<std::string> value; ///< Absent without "=".
};

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.push_back(text.substr(0, end));
        if (end == text.size())
            return parts;
        text.remove_prefix(end + 1);
    }
}

std::optional<QueryItem> queryItem(std::string_view text) {
    const std::size_t equals = text.find('=');
    const auto name = percentDecoded(text.substr(0, equals));
    if (!name)
        return std::nullopt;
    if (equals == std::string_view::npos)
        return QueryItem{*name, std::nullopt};
    auto value = percentDecoded(text.substr(equals + 1));
    if (!value)
        return std::nullopt;
    return QueryItem{*name, std::move(value)};
}

/// The target of a GET; absent for anything else.
std::optional<std::string_view> getTarget(std::string_view request) {
    const std::string_view line = request.substr(0, request.find("\r\n"));
    std::vector<std::string_view> words = split(line, ' ');
    std::erase(words, std::string_view());
    if (words.size() < 2 || words[0] != "GET")
        return std::nullopt;
    return words[1];
}

/// The query items of a target whose path is that of the callback; absent for any other and a malformed one.
std::optional<std::vector<QueryItem>> callbackItems(std::string_view target) {
    const auto isPrintable = [](char letter) { return letter > ' ' && letter < '\x7F'; };
    if (!std::ranges::all_of(target, isPrintable))
        return std::nullopt;
    target = target.substr(0, target.find('#'));
    const std::size_t question = target.find('?');
    const std::string_view path = target.substr(0, question);
    if (question == std::string_view::npos || (!path.empty() && path != "/"))
        return std::nullopt;
    std::vector<QueryItem> items;
    for (const std::string_view part : split(target.substr(question + 1), '&')) {
        auto item = queryItem(part);
        if (!item)
            return std::nullopt;
        items.push_back(std::move(*item));
    }
    return items;
}

bool hasState(const std::vector<QueryItem>& items, std::string_view expected) {
    return std::ranges::count(items, "state", &QueryItem::name) == 1 &&
           std::ranges::find(items, "state", &QueryItem::name)->value == expected;
}

} // namespace

Verdict judge(std::string_view request, std::string_view expectedState) {
    const Verdict invalid{"400 Bad Request", "Invalid sign-in callback.", Stray()};
    const auto target = getTarget(request);
    if (!target)
        return invalid;
    auto items = callbackItems(*target);
    if (!items || !hasState(*items, expectedState))
        return invalid;
    if (std::ranges::find(*items, "error", &QueryItem::name) != items->end())
        return {"200 OK", "Sign-in cancelled. Return to Marrowbox.", Denied()};
    const auto code = std::ranges::find(*items, "code", &QueryItem::name);
    if (code == items->end() || !code->value)
        return {"400 Bad Request", "Missing authorization code.", Stray()};
    return {"200 OK", "You can return to Marrowbox. This window may be closed.",
            Granted{std::move(*code->value)}};
}

std::string message(const Verdict& verdict) {
    return "HTTP/1.1 " + verdict.status + "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
           std::to_string(verdict.text.size()) + "\r\nCache-Control: no-store\r\nConnection: close\r\n\r\n" +
           verdict.text;
}

} // namespace marrowbox::SignInCallback
