import QtQuick
import Marrowbox.Appearance

// What other desktops keep in a menu bar.
MenuButton {
    id: root

    signal newBackup
    signal settings
    signal quit

    symbol: "line.3.horizontal"
    help: qsTr("Marrowbox menu")

    ActionMenuItem {
        text: qsTr("New Backup…")
        onTriggered: root.newBackup()
    }
    ActionMenuItem {
        text: qsTr("Settings…")
        onTriggered: root.settings()
    }
    MenuLine {}
    ActionMenuItem {
        text: qsTr("Quit Marrowbox")
        onTriggered: root.quit()
    }
}
