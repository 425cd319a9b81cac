import QtQuick
import Marrowbox.Appearance

// One choice of a Segmented. Only the one that holds is a stop for Tab.
PressItem {
    id: root

    activeFocusOnTab: chosen || activeFocus
    implicitWidth: label.implicitWidth + Appearance.mediumGap * 2
    implicitHeight: label.implicitHeight + (Appearance.tinyGap + Appearance.hairGap) * 2

    Rectangle {
        anchors.fill: parent
        radius: Appearance.smallRadius
        color: root.chosen ? Appearance.raised : Appearance.faded(Appearance.text, root.active ? Appearance.secondaryFill : 0)
        border.width: Appearance.hairline
        border.color: root.chosen ? Appearance.faded(Appearance.text, Appearance.menuBorder) : "transparent"

        FocusRing {
            shown: root.activeFocus
            cornerRadius: Appearance.smallRadius
            tint: root.accent.tint
        }
    }

    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        textFormat: Text.PlainText
        font: Appearance.button
        color: root.chosen ? Appearance.text : Appearance.muted
    }
}
