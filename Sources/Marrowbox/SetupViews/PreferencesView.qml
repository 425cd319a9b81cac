import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The sheet of the settings that all backups share. It is as tall as its tallest tab, so that it stays still.
Sheet {
    id: root

    required property SettingsModel model

    title: qsTr("Settings")
    hasCloseButton: false

    Segmented {
        Layout.alignment: Qt.AlignHCenter
        label: qsTr("Settings section")
        kind: Segmented.Tabs
        titles: root.model.tabs
        current: root.model.tab
        onPicked: index => root.model.showTab(index)
    }

    StackLayout {
        Layout.fillWidth: true
        currentIndex: root.model.tab

        GeneralTab {
            general: root.model.general
        }

        AccountsTab {
            accounts: root.model.accounts
            connection: root.model.connection
        }

        EmailTab {
            email: root.model.email
            connection: root.model.connection
        }
    }

    Connections {
        target: root.model
        function onDismissed() {
            root.close();
        }
    }

    footerContent: [
        Item {
            Layout.fillWidth: true
        },
        ActionButton {
            text: qsTr("Done")
            emphasis: ActionButton.Primary
            onClicked: root.model.dismiss()
        }
    ]
}
