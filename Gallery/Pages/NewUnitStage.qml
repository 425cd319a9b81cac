import QtQuick
import Marrowbox.SetupViews

// The sheet of a new backup over an empty window.
Item {
    id: root

    required property NewUnitModel model

    NewUnitView {
        visible: true
        model: root.model
    }
}
