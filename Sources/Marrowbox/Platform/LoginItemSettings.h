#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox {

/// A program and its arguments.
struct ProgramCall {
    std::string program;
    std::vector<std::string> arguments;

    friend bool operator==(const ProgramCall&, const ProgramCall&) = default;
};

/// The programs in which the users of a desktop choose what starts with their session, the best first; not
/// every machine has them. The desktop is named as XDG_CURRENT_DESKTOP does, such as "ubuntu:GNOME".
std::vector<ProgramCall> loginItemSettings(std::string_view desktop);

} // namespace marrowbox
