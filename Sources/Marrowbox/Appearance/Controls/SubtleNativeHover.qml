import QtQuick
import Marrowbox.Appearance

// What lies behind a small button while it is pointed at.
Rectangle {
    required property bool shown

    radius: Appearance.smallRadius
    color: Appearance.faded(Appearance.text, shown ? Appearance.subtleFill : 0)

    Behavior on color {
        ColorAnimation {
            duration: Appearance.quick
        }
    }
}
