import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// What went wrong, what the backup will do, and the buttons that end the sheet.
ColumnLayout {
    id: root

    required property NewUnitModel model

    spacing: Appearance.gap

    ErrorLine {
        Layout.fillWidth: true
        text: root.model.error
    }

    RowLayout {
        spacing: Appearance.smallGap

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            Words {
                Layout.fillWidth: true
                text: qsTr("Daily at 09:00 · History kept forever · Always incremental")
                font: Appearance.caption
                wrapMode: Text.Wrap
            }

            Words {
                Layout.fillWidth: true
                text: qsTr("You can adjust the schedule and history later.")
                font: Appearance.caption
                color: Appearance.muted
                wrapMode: Text.Wrap
            }
        }

        ActionButton {
            text: qsTr("Cancel")
            enabled: !root.model.isCreating
            disabledReason: root.model.creatingReason
            onClicked: root.model.dismiss()
        }

        ActionButton {
            text: qsTr("Create backup")
            emphasis: ActionButton.Primary
            enabled: root.model.canCreate
            disabledReason: root.model.isCreating ? root.model.creatingReason : root.model.missing
            onClicked: root.model.create()
        }
    }
}
