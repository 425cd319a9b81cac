import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A sheet over the window: title, close button, content that scrolls, and a footer. Escape and the buttons close it; a click
// beside it does not.
T.Dialog {
    id: root

    default property alias content: body.data
    property alias footerContent: foot.data
    property string subtitle: ""
    property string closeText: qsTr("Close")
    property bool hasCloseButton: true
    /// False while the sheet must stay, until what it has begun has come to its end.
    property bool closable: true
    property string unclosableReason: qsTr("Not available at the moment.")
    property int sheetWidth: Appearance.sheetWidth

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    closePolicy: closable ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose
    width: Math.min(sheetWidth, parent ? parent.width - Appearance.hugeGap : sheetWidth)
    height: Math.min(implicitHeight, parent ? parent.height - Appearance.hugeGap : implicitHeight)
    implicitHeight: head.implicitHeight + Appearance.mediumGap * 2 + body.implicitHeight + Appearance.largeGap
                    + (footArea.visible ? footArea.implicitHeight : 0)
    padding: 0

    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Appearance.quick
        }
    }
    exit: Transition {
        NumberAnimation {
            property: "opacity"
            to: 0
            duration: Appearance.quick
        }
    }

    T.Overlay.modal: Rectangle {
        color: Appearance.scrim
    }

    background: PopupSurface {
        radius: Appearance.sheetRadius
        color: Appearance.sheet
    }

    contentItem: ColumnLayout {
        spacing: 0

        RowLayout {
            id: head
            Layout.fillWidth: true
            Layout.leftMargin: Appearance.largeGap
            Layout.rightMargin: Appearance.mediumGap
            Layout.topMargin: Appearance.mediumGap
            Layout.bottomMargin: Appearance.mediumGap
            spacing: Appearance.smallGap

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Appearance.hairGap

                Words {
                    Layout.fillWidth: true
                    text: root.title
                    font: Appearance.heading
                    spokenRole: Accessible.Heading
                }

                Words {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: root.subtitle
                    color: Appearance.muted
                    wrapMode: Text.Wrap
                }
            }

            IconButton {
                Layout.alignment: Qt.AlignTop
                visible: root.hasCloseButton
                symbol: "xmark"
                help: root.closeText
                enabled: root.closable
                disabledReason: root.unclosableReason
                onClicked: root.close()
            }
        }

        ScrollPane {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentHeight: body.implicitHeight + Appearance.largeGap

            ColumnLayout {
                id: body
                x: Appearance.largeGap
                width: parent.width - Appearance.largeGap * 2
                spacing: Appearance.mediumGap
            }
        }

        ColumnLayout {
            id: footArea
            visible: foot.children.length > 0
            spacing: 0

            Separator {
                Layout.fillWidth: true
            }

            RowLayout {
                id: foot
                Layout.fillWidth: true
                Layout.margins: Appearance.mediumGap
                Layout.leftMargin: Appearance.largeGap
                Layout.rightMargin: Appearance.largeGap
                spacing: Appearance.gap
            }
        }
    }
}
