import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// From where, to where and when; and what it takes.
ColumnLayout {
    id: root

    required property UnitPageModel model
    readonly property var page: model.page

    spacing: Appearance.gap

    RowLayout {
        Layout.fillWidth: true
        spacing: Appearance.gap

        InfoCell {
            title: qsTr("ORIGIN")
            value: root.page.origin
            detail: root.page.originDetail
            symbol: root.page.originIcon
            link: root.page.originLink
            onOpened: root.model.openOrigin()
        }

        InfoCell {
            title: qsTr("DESTINATION")
            value: root.page.destination
            detail: root.page.destinationDetail
            symbol: "externaldrive"
        }

        InfoCell {
            title: qsTr("SCHEDULE")
            value: root.page.schedule
            detail: root.page.scheduleDetail
            symbol: "clock"
        }
    }

    // Its room is kept while the history is read, so that nothing moves when the figures arrive.
    Item {
        Layout.fillWidth: true
        implicitHeight: storage.implicitHeight
        visible: root.page.keepsStorageRoom

        RowLayout {
            id: storage

            width: parent.width
            spacing: Appearance.gap
            visible: root.page.totalSize !== "" // unseen is not enough: it would be read out

            StorageMetric {
                title: qsTr("TOTAL BACKUP DATA")
                size: root.page.totalSize
                detail: qsTr("All retained versions · deduplicated")
            }

            StorageMetric {
                title: qsTr("LATEST SNAPSHOT")
                size: root.page.latestSize
                detail: qsTr("Full size when restored")
            }
        }
    }
}
