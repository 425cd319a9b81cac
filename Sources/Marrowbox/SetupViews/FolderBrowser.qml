import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Walks down the folders of a Drive. Its height stays the same, whatever it shows.
ColumnLayout {
    id: root

    required property DriveBrowser browser

    signal used

    spacing: Appearance.smallGap

    RowLayout {
        Layout.minimumHeight: Appearance.controlHeight
        spacing: Appearance.smallGap

        IconButton {
            visible: !root.browser.isAtRoots
            symbol: "chevron.left"
            help: qsTr("Back")
            onClicked: root.browser.goBack()
        }

        ElidedWords {
            Layout.fillWidth: true
            text: root.browser.isAtRoots ? qsTr("My Drive & shared drives") : root.browser.placeName
            font: Appearance.strong
            spokenRole: Accessible.Heading
        }

        ActionButton {
            visible: !root.browser.isAtRoots
            text: qsTr("Use this folder")
            onClicked: root.used()
        }
    }

    Separator {
        Layout.fillWidth: true
    }

    Item {
        Layout.fillWidth: true
        implicitHeight: Appearance.rowHeight * Appearance.shownRows

        FolderList {
            anchors.fill: parent
            browser: root.browser
        }

        EmptyState {
            anchors.centerIn: parent
            width: parent.width - Appearance.hugeGap
            visible: root.browser.hasNoSubfolders
            text: qsTr("No subfolders. Use this folder to include its files.")
        }

        ActionButton {
            anchors.centerIn: parent
            visible: root.browser.hasFailed
            symbol: "arrow.clockwise"
            text: qsTr("Try again")
            onClicked: root.browser.reload()
        }

        ColumnLayout {
            anchors.centerIn: parent
            visible: root.browser.isLoading
            spacing: Appearance.smallGap

            Words {
                Layout.alignment: Qt.AlignHCenter
                text: progress.label
                font: Appearance.caption
                color: Appearance.muted
            }

            ProgressLine {
                id: progress
                Layout.preferredWidth: Appearance.menuWidth
                label: qsTr("Loading folders…")
            }
        }
    }
}
