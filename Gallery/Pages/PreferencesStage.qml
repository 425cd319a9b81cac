import QtQuick
import Marrowbox.SetupViews

// The sheet of the settings over an empty window.
Item {
    id: root

    required property SettingsModel model

    PreferencesView {
        visible: true
        model: root.model
    }
}
