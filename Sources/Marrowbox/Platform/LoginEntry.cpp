#include "Marrowbox/Platform/LoginEntry.h"

namespace marrowbox {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void readKey(LoginEntry& entry, std::string_view key, std::string_view value) {
    if (key == "Exec")
        entry.startsAProgram = entry.startsAProgram || !value.empty();
    else if (key == "Hidden")
        entry.isHidden = entry.isHidden || value == "true";
    else if (key == "X-GNOME-Autostart-enabled")
        entry.isEnabledByGnome = entry.isEnabledByGnome && value != "false";
}

} // namespace

LoginEntry readLoginEntry(std::string_view text) {
    LoginEntry entry;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('['))
            isInGroup = line == "[Desktop Entry]";
        const auto equals = line.find('=');
        if (isInGroup && equals != std::string_view::npos)
            readKey(entry, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return entry;
}

std::string execValue(const std::filesystem::path& executable) {
    std::string value = "\"";
    for (const char byte : executable.native()) {
        switch (byte) {
        case '"':
        case '`':
        case '$': // a backslash for the command line, which the entry's own escape doubles
            value += std::string("\\\\") + byte;
            break;
        case '\\':
            value += "\\\\\\\\";
            break;
        case '%': // else it begins a field code
            value += "%%";
            break;
        case '\n':
            value += "\\n";
            break;
        case '\r':
            value += "\\r";
            break;
        case '\t':
            value += "\\t";
            break;
        default:
            value += byte;
        }
    }
    return value + '"';
}

std::string loginEntryText(const std::filesystem::path& executable, const LoginEntry& marks) {
    std::string text = "[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Marrowbox\n"
                       "Comment=Keeps private, versioned backups of your Google Drive\n"
                       "Icon=net.marrowbox.Marrowbox\n"
                       "Terminal=false\n"
                       "Exec=" +
                       execValue(executable) +
                       "\nX-GNOME-Autostart-enabled=" + (marks.isEnabledByGnome ? "true" : "false") + "\n";
    if (marks.isHidden)
        text += "Hidden=true\n";
    return text;
}

} // namespace marrowbox
