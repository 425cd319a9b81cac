import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Which OAuth client signs accounts in, and how to bring one's own.
Section {
    id: root

    required property GeneralSettings general

    note: general.clientNote

    FormRow {
        label: qsTr("OAuth client")

        ElidedWords {
            Layout.maximumWidth: Appearance.fieldWidth
            text: root.general.client
            color: Appearance.muted
        }
    }

    Separator {
        Layout.fillWidth: true
    }

    FormRow {
        label: qsTr("Google Cloud project")

        ElidedWords {
            Layout.maximumWidth: Appearance.fieldWidth
            text: root.general.project
            color: Appearance.muted
        }
    }

    Separator {
        Layout.fillWidth: true
    }

    Flow {
        Layout.fillWidth: true
        spacing: Appearance.smallGap

        ActionButton {
            text: qsTr("Import Desktop OAuth JSON…")
            onClicked: root.general.importClient()
        }

        ActionButton {
            visible: root.general.usesImportedClient
            text: qsTr("Use the built-in client")
            emphasis: ActionButton.Quiet
            onClicked: root.general.useBundledClient()
        }
    }
}
