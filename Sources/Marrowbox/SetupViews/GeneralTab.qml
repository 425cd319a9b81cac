import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The tab "General" of the settings.
ColumnLayout {
    id: root

    required property GeneralSettings general

    spacing: Appearance.mediumGap

    Section {
        Layout.fillWidth: true
        note: root.general.closingNote

        Toggle {
            Layout.fillWidth: true
            text: qsTr("Start Marrowbox at login")
            on: root.general.startsAtLogin
            onSwitched: on => root.general.setStartsAtLogin(on)
        }

        StatusLine {
            Layout.fillWidth: true
            visible: root.general.needsApproval
            symbol: "info.circle"
            text: root.general.approvalNote
            tone: Tone.Warning
            wrapped: true
        }
    }

    Banner {
        Layout.fillWidth: true
        visible: root.general.lacksRclone
        title: qsTr("rclone is missing — backups cannot run")
        text: root.general.rcloneHint
    }

    Disclosure {
        Layout.fillWidth: true
        title: qsTr("Developer connection")

        DeveloperConnection {
            Layout.fillWidth: true
            general: root.general
        }
    }

    Item {
        Layout.fillHeight: true
    }
}
