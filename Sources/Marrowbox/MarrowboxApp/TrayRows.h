#pragma once

#include "Marrowbox/AppStore/AppState.h"

#include <QString>
#include <variant>
#include <vector>

namespace marrowbox {

/// What a row of the tray's menu does.
namespace TrayCommand {
struct OpenWindow {
    friend bool operator==(const OpenWindow&, const OpenWindow&) = default;
};
struct BackUp {
    Uuid unitID;
    friend bool operator==(const BackUp&, const BackUp&) = default;
};
struct CancelBackup {
    friend bool operator==(const CancelBackup&, const CancelBackup&) = default;
};
struct OpenMounted {
    Uuid snapshotID;
    friend bool operator==(const OpenMounted&, const OpenMounted&) = default;
};
struct Eject {
    Uuid snapshotID;
    friend bool operator==(const Eject&, const Eject&) = default;
};
struct OpenSettings {
    friend bool operator==(const OpenSettings&, const OpenSettings&) = default;
};
struct Quit {
    friend bool operator==(const Quit&, const Quit&) = default;
};
using Any = std::variant<OpenWindow, BackUp, CancelBackup, OpenMounted, Eject, OpenSettings, Quit>;
} // namespace TrayCommand

/// A row of the tray's menu: a text, a command, a line between groups, or a menu of its own.
struct TrayRow {
    QString text;
    std::optional<TrayCommand::Any> command;
    bool isEnabled = true;
    QString icon; ///< Name of a symbol; empty for none.
    std::vector<TrayRow> children;
    bool isLine = false; ///< Told apart from a status that has nothing to say yet.

    friend bool operator==(const TrayRow&, const TrayRow&) = default;
};

/// The menu as it is now, from top to bottom.
std::vector<TrayRow> trayRows(const AppState& state);

/// The symbol of the tray's icon.
QString traySymbol(const AppState& state);

} // namespace marrowbox
