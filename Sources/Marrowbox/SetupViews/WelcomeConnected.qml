import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The welcome of a person whose account is connected, and who has no backup yet.
ColumnLayout {
    id: root

    required property WelcomeModel model

    spacing: Appearance.smallGap

    StatusLine {
        Layout.fillWidth: true
        symbol: "checkmark.circle.fill"
        text: root.model.connectedTitle
        font: Appearance.subheading
        tone: Tone.Good
    }

    Words {
        Layout.fillWidth: true
        text: root.model.accountCount
        font: Appearance.lead
        wrapMode: Text.Wrap
    }

    Words {
        Layout.fillWidth: true
        text: root.model.nextStep
        color: Appearance.muted
        wrapMode: Text.Wrap
    }

    ActionButton {
        Layout.topMargin: Appearance.mediumGap
        text: root.model.createTitle
        emphasis: ActionButton.Primary
        symbol: "arrow.right"
        symbolAfter: true
        onClicked: root.model.createBackup()
    }
}
