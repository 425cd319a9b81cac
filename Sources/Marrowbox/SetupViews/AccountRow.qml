import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// One connected account, with what can be done about it.
ColumnLayout {
    id: root

    required property var account
    required property bool isFirst
    required property AccountConnection connection

    signal reconnectWanted
    signal sendingWanted
    signal disconnectWanted

    spacing: Appearance.smallGap
    Accessible.role: Accessible.Grouping
    Accessible.name: account.email
    Accessible.description: account.issue !== "" ? account.issue : account.grant

    Separator {
        Layout.fillWidth: true
        visible: !root.isFirst
    }

    RowLayout {
        spacing: Appearance.gap

        Icon {
            name: "person.crop.circle"
            side: Appearance.mediumIcon
            color: root.account.issue !== "" ? Appearance.muted : Appearance.accentOf(Appearance.theme).ink
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            ElidedWords {
                Layout.fillWidth: true
                text: root.account.email
                font: Appearance.strong
            }

            Words {
                Layout.fillWidth: true
                text: root.account.grant
                font: Appearance.caption
                color: Appearance.muted
            }
        }

        Badge {
            visible: root.account.issue !== ""
            text: root.account.issue
            tone: Tone.Warning
        }

        MenuButton {
            help: qsTr("Actions for %1").arg(root.account.email)

            ActionMenuItem {
                text: qsTr("Reconnect account")
                enabled: !root.connection.isWaiting
                disabledReason: root.connection.waitingReason
                onTriggered: root.reconnectWanted()
            }

            ActionMenuItem {
                text: qsTr("Enable Gmail sending…")
                offered: !root.account.canSendEmail
                enabled: !root.connection.isWaiting
                disabledReason: root.connection.waitingReason
                onTriggered: root.sendingWanted()
            }

            ActionMenuItem {
                text: qsTr("Disconnect")
                destructive: true
                onTriggered: root.disconnectWanted()
            }
        }
    }
}
