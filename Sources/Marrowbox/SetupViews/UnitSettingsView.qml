import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The sheet that edits one backup.
Sheet {
    id: root

    required property UnitSettingsModel model

    title: qsTr("Backup settings")
    hasCloseButton: false

    TextEntry {
        Layout.fillWidth: true
        label: qsTr("Name")
        text: root.model.name
        error: root.model.canSave ? "" : qsTr("A backup needs a name.")
        onEdited: text => root.model.name = text
        onAccepted: root.model.save()
    }

    ScheduleSection {
        Layout.fillWidth: true
        model: root.model
    }

    Section {
        Layout.fillWidth: true
        title: qsTr("Keep history")
        note: qsTr("Every snapshot is incremental. A limited history removes expired snapshots after the next successful one, while always keeping the latest.")

        FormRow {
            label: qsTr("Keep history")

            Picker {
                label: qsTr("Keep history")
                choices: root.model.histories
                chosen: root.model.history
                onPicked: value => root.model.history = value
            }
        }
    }

    SummariesSection {
        Layout.fillWidth: true
        model: root.model
    }

    ColorSection {
        Layout.fillWidth: true
        model: root.model
    }

    RetentionQuestion {
        model: root.model
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
            text: qsTr("Cancel")
            onClicked: root.model.dismiss()
        },
        ActionButton {
            text: qsTr("Save")
            emphasis: ActionButton.Primary
            enabled: root.model.canSave
            disabledReason: qsTr("A backup needs a name.")
            onClicked: root.model.save()
        }
    ]
}
