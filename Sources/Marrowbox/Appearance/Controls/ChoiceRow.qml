import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// One line of a menu or of a picker's list.
T.ItemDelegate {
    id: root

    property string symbol: ""
    property string detail: ""
    property bool chosen: false
    property string disabledReason: qsTr("Not available at the moment.")
    readonly property QtObject accent: Appearance.accentOf(Appearance.theme)

    function press() {
        if (enabled)
            clicked();
    }

    hoverEnabled: true
    font: Appearance.body
    leftPadding: Appearance.smallGap
    rightPadding: Appearance.smallGap
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Appearance.controlHeight
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.description: enabled ? detail : disabledReason
    Accessible.selectable: true
    Accessible.selected: chosen
    Accessible.onPressAction: press()

    background: Rectangle {
        radius: Appearance.smallRadius
        color: Appearance.faded(root.accent.tint, (root.highlighted || root.hovered) && root.enabled ? Appearance.activeFill : 0)
    }

    contentItem: RowLayout {
        spacing: Appearance.smallGap

        Icon {
            name: root.symbol
            color: Appearance.text
        }

        Text {
            Layout.fillWidth: true
            text: root.text
            textFormat: Text.PlainText
            font: root.font
            color: Appearance.text
            elide: Text.ElideMiddle
        }

        Text {
            visible: text !== ""
            text: root.detail
            textFormat: Text.PlainText
            font: Appearance.caption
            color: Appearance.muted
        }

        Icon {
            name: "checkmark"
            opacity: root.chosen ? Appearance.opaque : 0
            side: Appearance.smallIcon
            color: root.accent.ink
        }
    }
}
