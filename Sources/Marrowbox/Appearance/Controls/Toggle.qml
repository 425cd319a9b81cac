import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A switch with its text. Bind `on` to what holds; `switched` tells what the user wants, and the switch shows `on` again.
T.Switch {
    id: root

    property bool on: false
    property string note: ""
    property string disabledReason: qsTr("Not available at the moment.")
    readonly property QtObject accent: Appearance.accentOf(Appearance.theme)

    signal switched(bool on)

    function press() {
        if (enabled)
            switched(!on);
    }

    checked: on
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    font: Appearance.body
    spacing: Appearance.gap
    implicitWidth: implicitContentWidth
    implicitHeight: Math.max(implicitContentHeight, Appearance.switchHeight)
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    onToggled: {
        const wanted = checked;
        checked = Qt.binding(() => root.on);
        root.switched(wanted);
    }
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.description: enabled ? note : disabledReason
    Accessible.onPressAction: press()
    Accessible.onToggleAction: press()

    contentItem: RowLayout {
        spacing: root.spacing

        Text {
            text: root.text
            textFormat: Text.PlainText
            font: root.font
            color: Appearance.text
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }

        Rectangle {
            implicitWidth: Appearance.switchWidth
            implicitHeight: Appearance.switchHeight
            radius: height / 2
            color: root.checked ? root.accent.color : Appearance.faded(Appearance.text, root.hovered ? Appearance.thumbFill
                                                                                                     : Appearance.restBorder)
            Behavior on color {
                ColorAnimation {
                    duration: Appearance.quick
                }
            }

            Rectangle {
                readonly property int inset: Appearance.hairGap
                width: height
                height: parent.height - inset * 2
                radius: height / 2
                y: inset
                x: root.checked ? parent.width - width - inset : inset
                color: root.checked ? root.accent.onColor : Appearance.alertLabel
                Behavior on x {
                    NumberAnimation {
                        duration: Appearance.quick
                        easing.type: Easing.OutQuad
                    }
                }
            }

            FocusRing {
                shown: root.visualFocus
                cornerRadius: parent.height / 2
            }
        }
    }
}
