import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance
import Marrowbox.ContentView

// One snapshot: when, what changed, its mail, its size, and what can be done with it.
T.Control {
    id: root

    required property int index
    required property string dateText
    required property string summary
    required property string emailShortText
    required property string emailText
    required property string emailIcon
    required property string emailTone
    required property string dataSize
    required property string fullSize
    required property bool isMounted
    required property string spokenName
    property HistoryModel history
    property bool isExploring
    property bool isLast
    readonly property int buttonFocus: ListView.isCurrentItem ? Qt.TabFocus : Qt.NoFocus

    hoverEnabled: true
    leftPadding: Appearance.gap
    rightPadding: Appearance.smallGap
    Keys.onReturnPressed: menu.press()
    Keys.onEnterPressed: menu.press()
    Keys.onSpacePressed: menu.press()
    Keys.onMenuPressed: menu.press()

    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.focusable: true

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: Appearance.hairGap
            anchors.bottomMargin: Appearance.hairGap
            radius: Appearance.buttonRadius
            color: Appearance.faded(Appearance.text, root.hovered ? Appearance.tileFill : 0)

            FocusRing {
                anchors.margins: 0
                radius: parent.radius
                shown: root.visualFocus
            }
        }

        Separator {
            width: parent.width
            anchors.bottom: parent.bottom
            visible: !root.isLast
        }
    }

    contentItem: RowLayout {
        spacing: Appearance.gap

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.tinyGap

            RowLayout {
                Layout.fillWidth: true
                spacing: Appearance.smallGap

                Words {
                    text: root.dateText
                    font: Appearance.strong
                }

                Icon {
                    name: root.isMounted ? "checkmark.circle.fill" : ""
                    color: Appearance.success
                    Accessible.role: Accessible.Graphic
                    Accessible.name: qsTr("Mounted")
                }

                Item {
                    Layout.fillWidth: true
                }
            }

            Words {
                Layout.fillWidth: true
                text: root.summary
                font: Appearance.caption
                color: Appearance.muted
            }
        }

        EmailStatusLine {
            Layout.preferredWidth: Appearance.emailWidth
            Layout.fillWidth: false
            compact: true
            text: root.emailShortText
            fullText: root.emailText
            icon: root.emailIcon
            tone: root.emailTone
        }

        SnapshotSizes {
            Layout.preferredWidth: Appearance.sizesWidth
            Layout.fillWidth: false
            visible: root.dataSize !== ""
            dataSize: root.dataSize
            fullSize: root.fullSize
        }

        RowLayout {
            Layout.preferredWidth: Appearance.rowActionsWidth
            Layout.fillWidth: false
            spacing: Appearance.tinyGap

            Item {
                Layout.fillWidth: true
            }

            IconButton {
                visible: root.isMounted
                focusPolicy: root.buttonFocus
                symbol: "eject"
                help: qsTr("Eject snapshot")
                onClicked: root.history.eject(root.index)
            }

            MenuButton {
                id: menu

                focusPolicy: root.buttonFocus
                enabled: !root.isExploring
                disabledReason: qsTr("Another snapshot is being prepared or restored.")
                help: qsTr("Snapshot actions")

                ActionMenuItem {
                    text: root.history.mountTitle
                    symbol: "externaldrive"
                    onTriggered: root.history.mount(root.index)
                }

                ActionMenuItem {
                    text: qsTr("Restore to a folder…")
                    symbol: "arrow.down.to.folder"
                    onTriggered: root.history.restore(root.index)
                }
            }
        }
    }
}
