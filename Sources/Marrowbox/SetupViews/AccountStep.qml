import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Which account's Drive is backed up.
Card {
    id: root

    required property NewUnitModel model
    readonly property bool isEmpty: model.accounts.length === 0

    RowLayout {
        visible: root.isEmpty
        spacing: Appearance.gap

        Icon {
            name: "person.crop.circle.badge.plus"
            side: Appearance.mediumIcon
            color: Appearance.muted
        }

        Words {
            Layout.fillWidth: true
            text: qsTr("Connect a Google account to get started.")
            wrapMode: Text.Wrap
        }

        ConnectButton {
            connection: root.model.connection
            onWanted: root.model.connection.connectAccount()
        }
    }

    FormRow {
        visible: !root.isEmpty
        label: qsTr("Google account")

        Picker {
            label: qsTr("Google account")
            emptyTitle: qsTr("Choose an account")
            choices: root.model.accounts
            chosen: root.model.accountID
            onPicked: value => root.model.selectAccount(value)
        }
    }
}
