import QtQuick
import Marrowbox.Appearance

// A small button that is a symbol alone. Its help text is its name.
PressButton {
    id: root

    required property string symbol
    property color symbolColor: Appearance.muted
    property int symbolSide: Appearance.icon

    spokenName: help
    implicitWidth: Appearance.iconButton
    implicitHeight: Appearance.iconButton
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    background: SubtleNativeHover {
        shown: root.active

        FocusRing {
            shown: root.visualFocus
            cornerRadius: Appearance.smallRadius
        }
    }

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: root.symbol
            side: root.symbolSide
            color: root.active ? Appearance.text : root.symbolColor
        }
    }
}
