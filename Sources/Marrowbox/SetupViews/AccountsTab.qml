import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The tab "Accounts" of the settings.
ColumnLayout {
    id: root

    required property AccountSettings accounts
    required property AccountConnection connection

    spacing: Appearance.mediumGap

    ColumnLayout {
        spacing: Appearance.tinyGap

        Words {
            Layout.fillWidth: true
            text: qsTr("Connect the accounts you want to protect.")
            wrapMode: Text.Wrap
        }

        Words {
            Layout.fillWidth: true
            text: qsTr("Drive access is read-only. Marrowbox never changes or deletes your files in Google Drive.")
            font: Appearance.caption
            color: Appearance.muted
            wrapMode: Text.Wrap
        }
    }

    Card {
        Layout.fillWidth: true
        visible: root.accounts.accounts.length > 0

        Repeater {
            model: root.accounts.accounts

            AccountRow {
                required property var modelData
                required property int index

                Layout.fillWidth: true
                account: modelData
                isFirst: index === 0
                connection: root.connection
                onReconnectWanted: root.accounts.reconnect(modelData.id)
                onSendingWanted: root.accounts.enableSending(modelData.id)
                onDisconnectWanted: root.accounts.disconnectAccount(modelData.id)
            }
        }
    }

    ConnectButton {
        connection: root.connection
        emphasis: ActionButton.Secondary
        onWanted: root.connection.connectAccount()
    }

    Item {
        Layout.fillHeight: true
    }
}
