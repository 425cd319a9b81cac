import QtQuick
import Marrowbox.Appearance

// The ground of what floats: a menu, a list, a sheet. The shadow is drawn as a few ever fainter outlines, which
// every renderer can do.
Rectangle {
    id: root

    property int spread: Appearance.shadowSpread

    radius: Appearance.tileRadius
    color: Appearance.popup
    border.width: Appearance.hairline
    border.color: Appearance.faded(Appearance.text, Appearance.menuBorder)

    Repeater {
        model: root.spread
        Rectangle {
            required property int index

            anchors.fill: parent
            anchors.margins: -(index + 1)
            // Light falls from above.
            anchors.topMargin: -(index + 1) / 2
            anchors.bottomMargin: -(index + 1) * 3 / 2
            z: -1
            radius: root.radius + index + 1
            color: "transparent"
            border.width: Appearance.hairline
            border.color: Appearance.faded(Appearance.shadow, Math.pow(1 - (index + 1) / (root.spread + 1), 2))
        }
    }
}
