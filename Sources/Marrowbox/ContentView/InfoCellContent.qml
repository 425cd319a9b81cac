import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What stands on an InfoCell.
ColumnLayout {
    id: root

    required property Item cell ///< The InfoCell, whose type this one cannot name, since each needs the other.
    property string linkSymbol: ""
    property bool active: false
    readonly property QtObject accent: AppearanceState.accent

    spacing: Appearance.tinyGap

    RowLayout {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.tinyGap
        spacing: Appearance.smallGap

        Icon {
            name: root.cell.symbol
            color: root.accent.ink
        }

        Eyebrow {
            Layout.fillWidth: true
            text: root.cell.title
        }

        Icon {
            name: root.linkSymbol
            side: Appearance.smallIcon
            color: root.active ? root.accent.ink : Appearance.muted
        }
    }

    ElidedWords {
        Layout.fillWidth: true
        text: root.cell.value
        font: Appearance.subheading
    }

    Words {
        Layout.fillWidth: true
        Layout.fillHeight: true
        text: root.cell.detail
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
