#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace marrowbox {

/// What a desktop reads in an entry of its autostart folder. A desktop's settings switch an entry off by
/// changing one of the two marks, and the program that the entry starts leaves them as they are.
struct LoginEntry {
    bool startsAProgram = false;
    bool isHidden = false;        ///< Hidden=true
    bool isEnabledByGnome = true; ///< X-GNOME-Autostart-enabled, which other desktops honour too

    bool isSwitchedOff() const { return isHidden || !isEnabledByGnome; }

    friend bool operator==(const LoginEntry&, const LoginEntry&) = default;
};

/// Reads what it can of an entry, whoever wrote it; never fails. Where a mark stands twice, "off" wins.
LoginEntry readLoginEntry(std::string_view text);

/// The text of an entry that starts this program, with the marks of an earlier one.
std::string loginEntryText(const std::filesystem::path& executable, const LoginEntry& marks);

/// A path as the only word of an Exec key: quoted for the command line, and then escaped as the texts of a
/// desktop entry are.
std::string execValue(const std::filesystem::path& executable);

} // namespace marrowbox
