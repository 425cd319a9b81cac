import QtQuick
import Marrowbox.Appearance

// The ring around what the keyboard would press. It lies outside its parent, so it shows on filled surfaces too.
Rectangle {
    required property bool shown
    property real cornerRadius: Appearance.buttonRadius
    property color tint: Appearance.accentOf(Appearance.theme).tint

    anchors.fill: parent
    anchors.margins: -(Appearance.focusGap + Appearance.focusWidth)
    radius: cornerRadius + Appearance.focusGap + Appearance.focusWidth
    color: "transparent"
    border.width: Appearance.focusWidth
    border.color: Appearance.faded(tint, Appearance.focusedBorder)
    visible: shown
}
