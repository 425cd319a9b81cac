import QtQuick
import Marrowbox.Appearance

// The program's own mark.
Image {
    property int side: Appearance.largeIcon

    width: side
    height: side
    sourceSize: Qt.size(side, side)
    source: "qrc:/Marrowbox/Appearance/AppMark.svg"
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Marrowbox")
}
