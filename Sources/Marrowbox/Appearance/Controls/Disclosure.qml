import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A collapsible part whose whole header toggles it.
ColumnLayout {
    id: root

    default property alias content: body.data
    required property string title
    property bool expanded: false

    Layout.fillHeight: false
    spacing: Appearance.smallGap

    PressButton {
        id: header

        Layout.fillWidth: true
        spokenName: root.title // as a text of the control, a "&" in it would make a shortcut
        help: qsTr("Toggle this section")
        leftPadding: Appearance.smallGap
        rightPadding: Appearance.smallGap
        topPadding: Appearance.smallGap
        bottomPadding: Appearance.smallGap
        onClicked: root.expanded = !root.expanded

        // The value has no place of its own for a button, so it is told before the hint.
        Accessible.description: qsTr("%1. %2").arg(root.expanded ? qsTr("Expanded") : qsTr("Collapsed")).arg(help)

        background: SubtleNativeHover {
            shown: header.active

            FocusRing {
                shown: header.visualFocus
                cornerRadius: Appearance.smallRadius
            }
        }

        contentItem: RowLayout {
            spacing: Appearance.smallGap

            Icon {
                name: "chevron.right"
                side: Appearance.smallIcon
                color: Appearance.muted
                rotation: root.expanded ? 90 : 0

                Behavior on rotation {
                    NumberAnimation {
                        duration: Appearance.quick
                        easing.type: Easing.OutQuad
                    }
                }
            }

            Text {
                Layout.fillWidth: true
                text: root.title
                textFormat: Text.PlainText
                font: Appearance.strong
                color: Appearance.text
                elide: Text.ElideRight
            }
        }
    }

    ColumnLayout {
        id: body
        Layout.fillWidth: true
        visible: root.expanded
        spacing: Appearance.smallGap
    }
}
