import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A question or a notice over everything else. Escape and the first button mean no; a click beside it means nothing.
T.Dialog {
    id: root

    required property string message
    property string noText: qsTr("Cancel")
    /// Empty for a notice, which has one button only.
    property string yesText: ""
    property bool destructive: false
    /// Whether Return means no, which is then the button that stands out.
    property bool noIsDefault: destructive || yesText === ""

    signal answeredYes
    signal answeredNo

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    width: Math.min(Appearance.questionWidth, parent ? parent.width - Appearance.hugeGap : Appearance.questionWidth)
    padding: Appearance.largeGap
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    onRejected: answeredNo()
    onAccepted: answeredYes()
    onOpened: (noIsDefault ? no : yes).forceActiveFocus(Qt.TabFocusReason)

    T.Overlay.modal: Rectangle {
        color: Appearance.scrim
    }

    background: PopupSurface {
        radius: Appearance.sheetRadius
        color: Appearance.sheet
    }

    contentItem: ColumnLayout {
        spacing: Appearance.smallGap

        Words {
            Layout.fillWidth: true
            text: root.title
            font: Appearance.subheading
            wrapMode: Text.Wrap
            spokenRole: Accessible.Heading
        }

        Words {
            Layout.fillWidth: true
            text: root.message
            color: Appearance.muted
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Appearance.mediumGap
            spacing: Appearance.gap

            Item {
                Layout.fillWidth: true
            }

            ActionButton {
                id: no
                text: root.noText
                emphasis: root.noIsDefault && !root.destructive ? ActionButton.Primary : ActionButton.Secondary
                onClicked: root.reject()
            }

            ActionButton {
                id: yes
                visible: root.yesText !== ""
                text: root.yesText
                emphasis: {
                    if (root.destructive)
                        return ActionButton.Destructive;
                    return root.noIsDefault ? ActionButton.Secondary : ActionButton.Primary;
                }
                onClicked: root.accept()
            }
        }
    }
}
