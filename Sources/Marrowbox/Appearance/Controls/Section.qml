import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A part of a form: a heading, its fields, and a note below them.
ColumnLayout {
    id: root

    default property alias content: column.data
    property string title: ""
    property string note: ""

    Layout.fillHeight: false
    spacing: Appearance.smallGap

    Words {
        visible: root.title !== ""
        text: root.title
        font: Appearance.strong
        spokenRole: Accessible.Heading
    }

    Card {
        Layout.fillWidth: true

        ColumnLayout {
            id: column
            spacing: Appearance.gap
        }
    }

    Words {
        Layout.fillWidth: true
        visible: root.note !== ""
        text: root.note
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
