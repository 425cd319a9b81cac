import QtQuick
import Marrowbox.Appearance

// The program's own mark; a cloud where its picture is missing.
Image {
    id: root

    property int side: Appearance.largeIcon

    width: side
    height: side
    sourceSize: Qt.size(side, side)
    source: "qrc:/Marrowbox/Appearance/AppMark.svg"
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Marrowbox")

    Icon {
        name: root.status === Image.Error ? "cloud.fill" : ""
        side: root.side
        color: AppearanceState.accent.ink
    }
}
