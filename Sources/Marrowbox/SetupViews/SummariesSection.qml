import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// When runs of a backup are mailed.
Section {
    id: root

    required property UnitSettingsModel model
    readonly property string offReason: qsTr("Disabled: turn on email summary in global settings")

    title: qsTr("Email summaries")
    note: model.policyDetail

    FormRow {
        label: qsTr("Send")

        Picker {
            label: qsTr("Send")
            choices: root.model.policies
            chosen: root.model.policy
            enabled: !root.model.emailIsOff
            disabledReason: root.offReason
            onPicked: value => root.model.policy = value
        }
    }

    RowLayout {
        visible: root.model.emailIsOff
        spacing: Appearance.smallGap

        StatusLine {
            Layout.fillWidth: true
            symbol: "info.circle"
            text: root.offReason
            font: Appearance.caption
            wrapped: true
        }

        ActionButton {
            text: qsTr("Open Settings → Email")
            onClicked: root.model.openGlobalEmailSettings()
        }
    }
}
