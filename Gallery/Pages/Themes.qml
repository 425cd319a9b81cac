import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Themes"

    ThemePicker {
        Layout.fillWidth: true
        chosen: "violet"
    }

    GridLayout {
        columns: 4
        columnSpacing: Appearance.gap
        rowSpacing: Appearance.gap

        Repeater {
            model: Appearance.accents
            ActionButton {
                required property var modelData
                theme: modelData.name
                text: "Back up now"
                symbol: "arrow.clockwise"
                emphasis: ActionButton.Primary
            }
        }

        Repeater {
            model: Appearance.accents
            ActionButton {
                required property var modelData
                theme: modelData.name
                text: "Explore snapshot"
            }
        }
    }

    GridLayout {
        columns: 4
        columnSpacing: Appearance.largeGap
        rowSpacing: Appearance.gap

        Repeater {
            model: Appearance.accents
            RowLayout {
                required property var modelData
                spacing: Appearance.smallGap
                Icon { name: "folder"; color: parent.modelData.ink }
                Words { text: parent.modelData.title; color: parent.modelData.ink }
            }
        }
    }

    Item { Layout.fillHeight: true }
}
