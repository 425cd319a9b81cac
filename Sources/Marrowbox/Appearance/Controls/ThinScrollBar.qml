import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A scroll bar that steps back while nothing moves.
T.ScrollBar {
    id: root

    implicitWidth: Appearance.scrollBar + padding * 2
    implicitHeight: Appearance.scrollBar + padding * 2
    padding: Appearance.hairGap
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1
    minimumSize: height > 0 ? Appearance.controlHeight / height : 0
    hoverEnabled: true

    Accessible.name: qsTr("Scroll bar")

    contentItem: Rectangle {
        implicitWidth: Appearance.scrollBar
        implicitHeight: Appearance.scrollBar
        radius: Appearance.scrollBar / 2
        color: Appearance.faded(Appearance.text, root.hovered || root.pressed ? Appearance.activeBorder : Appearance.restBorder)
    }
}
