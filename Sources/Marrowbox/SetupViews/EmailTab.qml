import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The tab "Email" of the settings.
ColumnLayout {
    id: root

    required property EmailDraft email
    required property AccountConnection connection

    // Once saved there is nothing to save, and the keyboard goes on to what comes next.
    function save() {
        const byKey = saveButton.visualFocus;
        email.save();
        if (byKey && !saveButton.enabled)
            saveButton.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason);
    }

    spacing: Appearance.mediumGap

    Words {
        Layout.fillWidth: true
        text: root.email.introduction
        color: Appearance.muted
        wrapMode: Text.Wrap
    }

    EmailFields {
        Layout.fillWidth: true
        email: root.email
    }

    ColumnLayout {
        visible: root.email.needsPermission
        spacing: Appearance.smallGap

        Words {
            Layout.fillWidth: true
            text: qsTr("You’ll grant permission to send email. Marrowbox does not request access to read your inbox.")
            font: Appearance.caption
            color: Appearance.muted
            wrapMode: Text.Wrap
        }

        ConnectButton {
            connection: root.connection
            emphasis: ActionButton.Secondary
            text: root.email.permissionTitle
            onWanted: root.email.askForPermission()
        }
    }

    ErrorLine {
        Layout.fillWidth: true
        text: root.email.error
    }

    Flow {
        Layout.fillWidth: true
        spacing: Appearance.smallGap

        ActionButton {
            id: saveButton
            text: root.email.saveTitle
            symbol: root.email.isSaved ? "checkmark" : ""
            enabled: root.email.isEdited
            disabledReason: qsTr("There is nothing to save.")
            onClicked: root.save()
        }

        ActionButton {
            visible: root.email.hasQueued
            text: root.email.retryTitle
            symbol: "arrow.clockwise"
            emphasis: ActionButton.Quiet
            onClicked: root.email.retry()
        }
    }

    Item {
        Layout.fillHeight: true
    }
}
