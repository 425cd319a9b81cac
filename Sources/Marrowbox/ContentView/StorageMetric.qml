import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What a backup takes on its disk.
Card {
    id: root

    required property string title
    required property string size
    required property string detail
    readonly property string help: qsTr("Calculated from saved metadata only. Excludes filesystem overhead, unfinished transfers, and temporary mounted copies.")

    Layout.fillWidth: true
    Layout.preferredWidth: 1
    spacing: Appearance.tinyGap
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("%1: %2").arg(title).arg(size)
    Accessible.description: help

    HoverHandler {
        id: hover
    }

    Eyebrow {
        Layout.fillWidth: true
        text: root.title
    }

    Words {
        Layout.fillWidth: true
        text: root.size
        font: Appearance.heading

        HelpTip {
            text: root.help
            shown: hover.hovered
        }
    }

    Words {
        Layout.fillWidth: true
        text: root.detail
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
