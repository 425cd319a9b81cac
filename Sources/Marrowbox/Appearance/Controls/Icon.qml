import QtQuick
import Marrowbox.Appearance

// A symbol of the set, tinted. It is silent to a screen reader: what it says stands in the control around it.
Image {
    id: root

    required property string name
    property color color: Appearance.text
    property int side: Appearance.icon

    width: side
    height: side
    sourceSize: Qt.size(side, side)
    source: name === "" ? "" : "image://symbol/" + name + "/" + color
    visible: name !== ""
}
