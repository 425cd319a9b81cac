#pragma once

#include <string>
#include <string_view>
#include <variant>

/// What a request to the sign-in's port means. Pure; any thread.
namespace marrowbox::SignInCallback {

/// The user's consent.
struct Granted {
    std::string code; ///< May be empty: the token endpoint judges it.

    friend bool operator==(const Granted&, const Granted&) = default;
};

/// The user's refusal.
struct Denied {
    friend bool operator==(const Denied&, const Denied&) = default;
};

/// A request that is not the awaited one; the sign-in goes on.
struct Stray {
    friend bool operator==(const Stray&, const Stray&) = default;
};

/// The answer to a request, and what it means to the sign-in.
struct Verdict {
    std::string status; ///< Such as "200 OK".
    std::string text;   ///< What the browser shows.
    std::variant<Stray, Granted, Denied> meaning;
};

/// Judges a request by its first line; only one with the expected state can end a sign-in.
Verdict judge(std::string_view request, std::string_view expectedState);

/// One complete HTTP message.
std::string message(const Verdict& verdict);

} // namespace marrowbox::SignInCallback
