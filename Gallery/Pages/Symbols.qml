import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    id: root

    required property var names

    title: "Symbols"

    GridLayout {
        columns: 12
        columnSpacing: Appearance.largeGap
        rowSpacing: Appearance.largeGap

        AppMark { side: Appearance.heroIcon }
        AppMark { side: Appearance.mediumIcon }

        Repeater {
            model: root.names
            Icon {
                required property string modelData
                name: modelData
                side: Appearance.largeIcon
            }
        }

        Repeater {
            model: root.names
            Icon {
                required property string modelData
                name: modelData
            }
        }
    }

    Item { Layout.fillHeight: true }
}
