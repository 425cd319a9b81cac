#pragma once

#include <optional>
#include <string>

namespace marrowbox {

/// The values of the environment variables that choose how dates are written, where set.
struct LocaleVariables {
    std::optional<std::string> all;  ///< LC_ALL
    std::optional<std::string> time; ///< LC_TIME
    std::optional<std::string> lang; ///< LANG
};

/// The identifier of the locale that they choose: the first that is not empty, without its character set. The
/// locale of machines ("C") and none at all give "en_US_POSIX".
std::string userLocale(const LocaleVariables& variables);

/// The same for the process's own environment.
std::string userLocale();

} // namespace marrowbox
