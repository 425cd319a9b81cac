import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Buttons"

    RowLayout {
        spacing: Appearance.gap
        ActionButton { text: "Back up now"; symbol: "arrow.clockwise"; emphasis: ActionButton.Primary }
        ActionButton { text: "Explore snapshot" }
        ActionButton { text: "Cancel"; emphasis: ActionButton.Quiet }
        ActionButton { text: "Remove backup…"; emphasis: ActionButton.Destructive }
        ActionButton { text: "Create your first backup"; symbol: "arrow.right"; symbolAfter: true; emphasis: ActionButton.Primary }
    }

    RowLayout {
        spacing: Appearance.gap
        ActionButton { text: "Back up now"; symbol: "arrow.clockwise"; emphasis: ActionButton.Primary; enabled: false }
        ActionButton { text: "Explore snapshot"; enabled: false }
        ActionButton { text: "Cancel"; emphasis: ActionButton.Quiet; enabled: false }
        ActionButton { text: "Remove backup…"; emphasis: ActionButton.Destructive; enabled: false }
    }

    RowLayout {
        spacing: Appearance.gap
        ActionButton { text: "Back up now"; symbol: "arrow.clockwise"; emphasis: ActionButton.Primary; down: true }
        ActionButton { text: "Explore snapshot"; down: true }
        ActionButton { text: "Cancel"; emphasis: ActionButton.Quiet; down: true }
        ActionButton { text: "Remove backup…"; emphasis: ActionButton.Destructive; down: true }
    }

    RowLayout {
        spacing: Appearance.gap
        ActionButton {
            text: "With the keyboard"
            emphasis: ActionButton.Primary
            Component.onCompleted: forceActiveFocus(Qt.TabFocusReason)
        }
        ActionButton { theme: "sunshine"; text: "Sunshine"; emphasis: ActionButton.Primary }
    }

    RowLayout {
        spacing: Appearance.gap
        SettingsGear {}
        IconButton { symbol: "plus"; help: "New backup" }
        IconButton { symbol: "eject"; help: "Eject snapshot"; down: true }
        IconButton { symbol: "ellipsis"; help: "Snapshot actions"; enabled: false }
        Segmented { label: "Settings section"; titles: ["General", "Accounts", "Email"]; kind: Segmented.Tabs; current: 1 }
    }

    PressCard {
        Layout.preferredWidth: Appearance.fieldWidth
        spokenName: "A card"
        contentItem: ColumnLayout {
            spacing: Appearance.tinyGap
            Eyebrow { text: "ORIGIN" }
            Words { text: "All of My Drive"; font: Appearance.subheading; Layout.fillWidth: true }
            Words { text: "Folder in My Drive"; font: Appearance.caption; color: Appearance.muted; Layout.fillWidth: true }
        }
    }

    Item { Layout.fillHeight: true }
}
