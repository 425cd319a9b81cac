import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What stands above the rows of a history, or in their place.
ColumnLayout {
    id: root

    required property bool isEmpty

    spacing: Appearance.tinyGap

    Words {
        Layout.fillWidth: true
        text: qsTr("Backup history")
        font: Appearance.heading
        Accessible.role: Accessible.Heading
    }

    StatusLine {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.gap
        text: qsTr("Each date is a complete view. Mounting prepares a local copy and uses temporary disk space.")
        symbol: "info.circle"
        font: Appearance.caption
        wrapped: true
    }

    Card {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.largeGap
        visible: root.isEmpty
        padding: Appearance.largeGap

        EmptyState {
            Layout.fillWidth: true
            symbol: "clock.arrow.circlepath"
            text: qsTr("Your history starts with the first snapshot.")
        }
    }
}
