import QtQuick
import Marrowbox.Appearance

// A card that is a button as a whole. Give it a spokenName and a contentItem.
PressButton {
    id: root

    padding: Appearance.mediumGap
    scale: enabled && down ? Appearance.pressedScale : 1

    background: Rectangle {
        radius: Appearance.cardRadius
        color: Appearance.card
        border.width: Appearance.hairline
        border.color: root.active ? Appearance.faded(root.accent.tint, Appearance.activeBorder) : Appearance.border

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: Appearance.faded(root.accent.tint, root.active ? Appearance.secondaryFill : 0)
        }

        FocusRing {
            shown: root.visualFocus
            cornerRadius: Appearance.cardRadius
            tint: root.accent.tint
        }
    }
}
