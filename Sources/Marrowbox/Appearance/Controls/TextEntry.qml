import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A field for one line, with its label above and a note or an error below.
ColumnLayout {
    id: root

    required property string label
    property alias text: field.text
    property string placeholder: ""
    property string note: ""
    property string error: ""
    property string disabledReason: qsTr("Not available at the moment.")
    property alias inputMethodHints: field.inputMethodHints
    readonly property QtObject accent: Appearance.accentOf(Appearance.theme)

    signal edited(string text)
    signal accepted

    function take() {
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
    }

    Layout.fillHeight: false
    spacing: Appearance.tinyGap

    Text {
        text: root.label
        textFormat: Text.PlainText
        font: Appearance.caption
        color: Appearance.muted
    }

    T.TextField {
        id: field

        Layout.fillWidth: true
        implicitWidth: Appearance.fieldWidth
        implicitHeight: Appearance.controlHeight
        leftPadding: Appearance.smallGap + Appearance.hairGap
        rightPadding: leftPadding
        verticalAlignment: TextInput.AlignVCenter
        font: Appearance.body
        color: Appearance.text
        placeholderTextColor: Appearance.muted
        selectionColor: root.accent.color
        selectedTextColor: root.accent.onColor
        selectByMouse: true
        opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity
        onTextEdited: root.edited(text)
        onAccepted: root.accepted()

        Accessible.role: Accessible.EditableText
        Accessible.name: root.label
        Accessible.description: {
            if (!enabled)
                return root.disabledReason;
            return root.error !== "" ? root.error : root.note !== "" ? root.note : root.placeholder;
        }

        background: Rectangle {
            radius: Appearance.smallRadius
            color: Appearance.field
            border.width: field.activeFocus ? Appearance.focusWidth : Appearance.hairline
            border.color: {
                if (root.error !== "")
                    return Appearance.alert;
                return field.activeFocus ? root.accent.tint : field.hovered ? Appearance.muted : Appearance.fieldBorder;
            }

            Text {
                anchors.fill: parent
                anchors.leftMargin: field.leftPadding
                anchors.rightMargin: field.rightPadding
                verticalAlignment: Text.AlignVCenter
                text: root.placeholder
                textFormat: Text.PlainText
                font: field.font
                color: Appearance.muted
                elide: Text.ElideRight
                visible: field.length === 0 && !field.preeditText
            }
        }
    }

    Words {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.error !== "" ? root.error : root.note
        font: Appearance.caption
        color: root.error !== "" ? Appearance.alert : Appearance.muted
        wrapMode: Text.Wrap
    }
}
