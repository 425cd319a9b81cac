#include "Platform/UserLocale.h"

#include <array>
#include <cstdlib>

namespace marrowbox {

namespace {

std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

} // namespace

std::string userLocale(const LocaleVariables& variables) {
    for (const auto* value : std::array{&variables.all, &variables.time, &variables.lang}) {
        if (!value->has_value() || (*value)->empty())
            continue;
        const std::string name = (*value)->substr(0, (*value)->find_first_of(".@"));
        if (name != "C" && name != "POSIX")
            return name;
        break;
    }
    return "en_US_POSIX";
}

std::string userLocale() {
    return userLocale({.all = variable("LC_ALL"), .time = variable("LC_TIME"), .lang = variable("LANG")});
}

} // namespace marrowbox
