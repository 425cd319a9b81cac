import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A small numbered heading in the theme's colour.
RowLayout {
    id: root

    required property string number
    required property string title
    property string theme: Appearance.theme
    property bool wrapped: false
    readonly property QtObject accent: Appearance.accentOf(theme)

    Layout.fillHeight: false
    spacing: Appearance.smallGap
    Accessible.role: Accessible.Heading
    Accessible.name: qsTr("%1. %2").arg(number).arg(title)

    Rectangle {
        implicitWidth: Appearance.mediumIcon
        implicitHeight: Appearance.mediumIcon
        radius: height / 2
        color: root.accent.color

        Text {
            anchors.centerIn: parent
            text: root.number
            font: Appearance.eyebrow
            color: root.accent.onColor
        }
    }

    Text {
        Layout.fillWidth: true
        text: root.title
        textFormat: Text.PlainText
        font: Appearance.subheading
        color: root.accent.ink
        wrapMode: root.wrapped ? Text.Wrap : Text.NoWrap
        elide: root.wrapped ? Text.ElideNone : Text.ElideRight
    }
}
