import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// One fact about a backup. With a link it is a button, and only then: what cannot be pressed must not read as if it could.
Loader {
    id: root

    required property string title
    required property string value
    required property string detail
    required property string symbol
    property string link: ""
    readonly property string spokenName: qsTr("%1: %2").arg(title).arg(value)

    signal opened

    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.preferredWidth: 1
    sourceComponent: link !== "" ? button : plain

    Component {
        id: plain

        Card {
            Accessible.role: Accessible.Grouping
            Accessible.name: root.spokenName
            Accessible.description: root.detail

            InfoCellContent {
                Layout.fillWidth: true
                Layout.fillHeight: true
                cell: root
            }
        }
    }

    Component {
        id: button

        PressCard {
            id: card

            spokenName: root.spokenName
            help: qsTr("Open in Google Drive")
            onClicked: root.opened()
            contentItem: InfoCellContent {
                cell: root
                linkSymbol: "arrow.up.right"
                active: card.active
            }
        }
    }
}
