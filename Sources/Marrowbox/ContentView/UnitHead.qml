import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// The page of a backup down to the heading of its history.
ColumnLayout {
    id: root

    required property UnitPageModel model
    readonly property var page: model.page

    spacing: Appearance.largeGap

    Banner {
        Layout.fillWidth: true
        Layout.topMargin: Appearance.largeGap
        visible: root.page.isDisconnected
        title: qsTr("This backup is not running.")
        text: qsTr("Its Google account is disconnected. Reconnect it to resume automatic backups. Existing backups are untouched.")
        spokenName: qsTr("This backup is not running. Its Google account is disconnected.")
        action: root.page.reconnectTitle
        actionEnabled: !root.page.isConnecting
        actionDisabledReason: qsTr("Finish the sign-in in your browser.")
        onActed: root.model.reconnect()
    }

    UnitTitle {
        Layout.fillWidth: true
        Layout.topMargin: root.page.isDisconnected ? 0 : Appearance.hugeGap
        model: root.model
    }

    UnitState {
        Layout.fillWidth: true
        model: root.model
    }

    UnitActions {
        Layout.fillWidth: true
        model: root.model
    }

    UnitFacts {
        Layout.fillWidth: true
        Layout.topMargin: Appearance.smallGap
        model: root.model
    }

    HistoryHeading {
        Layout.fillWidth: true
        Layout.topMargin: Appearance.smallGap
        isEmpty: root.model.history.count === 0 && !root.page.isReading
    }
}
