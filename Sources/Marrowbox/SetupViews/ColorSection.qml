import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The colour of a backup.
Section {
    id: root

    required property UnitSettingsModel model

    title: qsTr("Color")
    note: qsTr("Gives this backup its own color in the sidebar and on its page.")

    GridLayout {
        Layout.fillWidth: true
        columns: 2
        columnSpacing: Appearance.smallGap
        rowSpacing: Appearance.smallGap

        Repeater {
            model: Appearance.accents

            ThemeTile {
                required property var modelData

                Layout.fillWidth: true
                Layout.preferredWidth: Appearance.tileHeight // alike for all, so that the columns are
                theme: modelData.name
                chosen: root.model.theme === modelData.name
                onClicked: root.model.theme = modelData.name
            }
        }
    }
}
