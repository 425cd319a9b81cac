import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What a person can do with a backup now.
RowLayout {
    id: root

    required property UnitPageModel model
    readonly property var page: model.page

    spacing: Appearance.smallGap

    // One takes the other's place.
    ActionButton {
        id: cancel

        visible: root.page.isBusy
        text: qsTr("Cancel snapshot")
        successor: backUp
        onClicked: root.model.cancelBackup()
    }

    ActionButton {
        id: backUp

        visible: !root.page.isBusy
        text: qsTr("Back up now")
        spokenName: root.page.backUpLabel
        symbol: "arrow.clockwise"
        emphasis: ActionButton.Primary
        successor: cancel
        onClicked: root.model.backUpNow()
    }

    ActionButton {
        visible: text !== ""
        enabled: !root.page.isExploring
        disabledReason: qsTr("Another snapshot is being prepared or restored.")
        text: root.page.exploreTitle
        onClicked: root.model.explore()
    }

    Item {
        Layout.fillWidth: true
    }
}
