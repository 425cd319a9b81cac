import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Who sends the summaries, and to whom.
Card {
    id: root

    required property EmailDraft email

    spacing: Appearance.gap

    FormRow {
        label: qsTr("Send summaries with")

        Picker {
            label: qsTr("Send summaries with")
            choices: root.email.providers
            chosen: root.email.provider
            onPicked: value => root.email.setProvider(value)
        }
    }

    FormRow {
        visible: root.email.isGmail
        label: qsTr("Google account")

        Picker {
            label: qsTr("Google account")
            emptyTitle: qsTr("Choose an account")
            choices: root.email.accounts
            chosen: root.email.accountID
            enabled: root.email.accounts.length > 0
            disabledReason: qsTr("Connect a Google account first.")
            onPicked: value => root.email.setAccountID(value)
        }
    }

    TextEntry {
        Layout.fillWidth: true
        visible: root.email.isGmail
        label: qsTr("Send to")
        inputMethodHints: Qt.ImhEmailCharactersOnly
        text: root.email.recipient
        onEdited: text => root.email.setRecipient(text)
        onAccepted: if (root.email.isEdited)
            root.email.save()
    }
}
