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

    ThemePicker {
        Layout.fillWidth: true
        columns: 2
        chosen: root.model.theme
        onPicked: theme => root.model.theme = theme
    }
}
