import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// What stands where nothing is yet.
ColumnLayout {
    id: root

    default property alias content: actions.data
    required property string text
    property string symbol: ""
    property string detail: ""

    Layout.fillHeight: false
    spacing: Appearance.smallGap

    Icon {
        Layout.alignment: Qt.AlignHCenter
        name: root.symbol
        side: Appearance.largeIcon
        color: Appearance.muted
    }

    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: root.text
        wrapMode: Text.Wrap
    }

    Words {
        Layout.fillWidth: true
        visible: text !== ""
        horizontalAlignment: Text.AlignHCenter
        text: root.detail
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }

    RowLayout {
        id: actions
        Layout.alignment: Qt.AlignHCenter
        spacing: Appearance.smallGap
        visible: children.length > 0
    }
}
