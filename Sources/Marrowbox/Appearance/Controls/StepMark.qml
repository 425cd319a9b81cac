import QtQuick
import Marrowbox.Appearance

// One of the two marks of a NumberStepper.
Item {
    id: root

    required property bool upwards
    required property bool active

    implicitWidth: Appearance.mediumGap

    Icon {
        anchors.centerIn: parent
        name: "chevron.down"
        rotation: root.upwards ? 180 : 0
        side: Appearance.stepMark
        color: root.active ? Appearance.text : Appearance.muted
    }
}
