import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Which account's Drive is backed up.
ColumnLayout {
    id: root

    required property NewUnitModel model
    readonly property bool isEmpty: model.accounts.length === 0
    readonly property var chosen: model.accounts.find(account => account.value === model.accountID)

    spacing: Appearance.mediumGap

    RowLayout {
        spacing: Appearance.mediumGap

        SectionEyebrow {
            Layout.fillWidth: true
            number: qsTr("1")
            title: qsTr("Google account")
            wrapped: true
        }

        Badge {
            visible: text !== ""
            text: root.chosen ? root.chosen.detail : ""
            tone: Tone.Warning
        }

        Picker {
            visible: !root.isEmpty
            label: qsTr("Google account")
            emptyTitle: qsTr("Choose an account")
            choices: root.model.accounts
            chosen: root.model.accountID
            disabledReason: root.model.creatingReason
            onPicked: value => root.model.selectAccount(value)
        }
    }

    Card {
        Layout.fillWidth: true
        visible: root.isEmpty

        RowLayout {
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
    }
}
