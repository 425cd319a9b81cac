import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// All themes as tiles. `chosen` is the stored name of the one that holds; `picked` tells which one the user wants.
GridLayout {
    id: root

    property string chosen: "blue"

    signal picked(string theme)

    Layout.fillHeight: false
    columns: 4
    columnSpacing: Appearance.smallGap
    rowSpacing: Appearance.smallGap
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Color")

    Repeater {
        model: Appearance.accents

        ThemeTile {
            required property QtObject modelData

            // Equal widths, whatever the titles.
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            theme: modelData.name
            chosen: modelData.name === root.chosen
            onClicked: root.picked(modelData.name)
        }
    }
}
