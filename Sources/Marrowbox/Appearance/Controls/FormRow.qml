import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A label with its control at the far side.
RowLayout {
    id: root

    default property alias content: trailing.data
    required property string label
    property string detail: ""

    Layout.fillHeight: false
    spacing: Appearance.mediumGap

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Appearance.hairGap

        Words {
            Layout.fillWidth: true
            text: root.label
        }

        Words {
            Layout.fillWidth: true
            visible: text !== ""
            text: root.detail
            font: Appearance.caption
            color: Appearance.muted
            wrapMode: Text.Wrap
        }
    }

    RowLayout {
        id: trailing
        spacing: Appearance.smallGap
    }
}
