import QtQuick
import Marrowbox.SetupViews

// The sheet of one backup's settings over an empty window.
Item {
    id: root

    required property UnitSettingsModel model

    UnitSettingsView {
        visible: true
        model: root.model
    }
}
