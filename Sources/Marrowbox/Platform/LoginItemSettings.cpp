#include "Marrowbox/Platform/LoginItemSettings.h"

#include <algorithm>

namespace marrowbox {

namespace {

struct DesktopSettings {
    std::string_view desktop;
    ProgramCall call;
};

const std::vector<DesktopSettings>& table() {
    static const std::vector<DesktopSettings> settings{
        {"GNOME", {"gnome-session-properties", {}}},
        {"GNOME", {"gnome-tweaks", {}}},
        {"KDE", {"systemsettings", {"kcm_autostart"}}},
        {"KDE", {"systemsettings5", {"kcm_autostart"}}},
        {"XFCE", {"xfce4-session-settings", {}}},
        {"X-Cinnamon", {"cinnamon-settings", {"startup"}}},
        {"MATE", {"mate-session-properties", {}}},
        {"LXQt", {"lxqt-config-session", {}}},
        {"LXDE", {"lxsession-edit", {}}},
    };
    return settings;
}

} // namespace

std::vector<ProgramCall> loginItemSettings(std::string_view desktop) {
    std::vector<ProgramCall> calls;
    while (!desktop.empty()) {
        const auto end = std::min(desktop.find(':'), desktop.size());
        for (const DesktopSettings& settings : table())
            if (settings.desktop == desktop.substr(0, end))
                calls.push_back(settings.call);
        desktop.remove_prefix(std::min(end + 1, desktop.size()));
    }
    return calls;
}

} // namespace marrowbox
