import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// What an InfoCell shows, whether or not it can be pressed.
ColumnLayout {
    id: root

    required property string title
    required property string value
    required property string detail
    required property string symbol
    property bool opens: false
    property bool active: false
    readonly property color ink: AppearanceState.accent.ink

    spacing: Appearance.tinyGap

    RowLayout {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.tinyGap
        spacing: Appearance.smallGap

        Icon {
            name: root.symbol
            color: root.ink
        }

        Eyebrow {
            Layout.fillWidth: true
            text: root.title
        }

        Icon {
            name: root.opens ? "arrow.up.right" : ""
            side: Appearance.smallIcon
            color: root.active ? root.ink : Appearance.muted
        }
    }

    ElidedWords {
        Layout.fillWidth: true
        text: root.value
        font: Appearance.subheading
    }

    Words {
        Layout.fillWidth: true
        Layout.fillHeight: true
        text: root.detail
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
