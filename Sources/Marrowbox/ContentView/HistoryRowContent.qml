import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What is seen of a HistoryRow: when, what changed, its mail, its size, and what can be done with it.
Item {
    id: root

    required property Item row ///< The HistoryRow, whose type this one cannot name, since each needs the other.
    readonly property alias menuButton: menuButton

    Rectangle {
        anchors.fill: parent
        anchors.topMargin: Appearance.hairGap
        anchors.bottomMargin: Appearance.hairGap
        radius: Appearance.buttonRadius
        color: Appearance.faded(Appearance.text, root.row.hovered ? Appearance.tileFill : 0)

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            shown: root.row.visualFocus
        }
    }

    Separator {
        width: parent.width
        anchors.bottom: parent.bottom
        visible: !root.row.isLast
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Appearance.gap
        anchors.rightMargin: Appearance.smallGap
        spacing: Appearance.gap

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.tinyGap

            RowLayout {
                Layout.fillWidth: true
                spacing: Appearance.smallGap

                Words {
                    text: root.row.dateText
                    font: Appearance.strong
                }

                Icon {
                    name: root.row.isMounted ? "checkmark.circle.fill" : ""
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
                text: root.row.summary
                font: Appearance.caption
                color: Appearance.muted
            }
        }

        EmailStatusLine {
            Layout.preferredWidth: Appearance.emailWidth
            Layout.fillWidth: false
            compact: true
            text: root.row.emailShortText
            fullText: root.row.emailText
            icon: root.row.emailIcon
            tone: root.row.emailTone
        }

        SnapshotSizes {
            Layout.preferredWidth: Appearance.sizesWidth
            Layout.fillWidth: false
            visible: root.row.dataSize !== ""
            dataSize: root.row.dataSize
            fullSize: root.row.fullSize
        }

        // As wide with one button as with two, so that the columns of all rows stand below one another.
        Item {
            implicitWidth: Appearance.rowActionsWidth
            implicitHeight: Appearance.iconButton

            Row {
                anchors.right: parent.right
                spacing: Appearance.tinyGap

                Loader {
                    active: root.row.isMounted
                    visible: active
                    sourceComponent: IconButton {
                        focusPolicy: root.row.buttonFocus
                        symbol: "eject"
                        help: qsTr("Eject snapshot")
                        onClicked: root.row.history.eject(root.row.snapshotID)
                    }
                }

                IconButton {
                    id: menuButton

                    focusPolicy: root.row.buttonFocus
                    enabled: !root.row.isExploring
                    disabledReason: qsTr("Another snapshot is being prepared or restored.")
                    symbol: "ellipsis"
                    help: qsTr("Snapshot actions")
                    onClicked: root.row.menuWanted(menuButton)
                }
            }
        }
    }
}
