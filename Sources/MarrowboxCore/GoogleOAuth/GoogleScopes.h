#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the program asks an account for.
namespace marrowbox::GoogleScopes {

inline constexpr std::string_view drive = "https://www.googleapis.com/auth/drive.readonly";
inline constexpr std::string_view send = "https://www.googleapis.com/auth/gmail.send";

/// The scopes of a sign-in, in the order in which they are asked for; sending mail last and only on request.
std::vector<std::string> requested(bool email);

/// The scopes of a grant's text, which separates them with blanks.
std::vector<std::string> granted(std::string_view scope);

} // namespace marrowbox::GoogleScopes
