import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// One fact about a backup. With a link it is a button, and without one it is none to anybody: each is an element of its own,
// since a button keeps its role for good.
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
    sourceComponent: link !== "" ? button : fact

    Component {
        id: button

        PressCard {
            id: card

            help: qsTr("Open in Google Drive")
            spokenName: root.spokenName
            onClicked: root.opened()

            contentItem: InfoFact {
                title: root.title
                value: root.value
                detail: root.detail
                symbol: root.symbol
                opens: true
                active: card.active
            }
        }
    }

    Component {
        id: fact

        Card {
            Accessible.role: Accessible.Grouping
            Accessible.name: root.spokenName
            Accessible.description: root.detail

            InfoFact {
                Layout.fillWidth: true
                Layout.fillHeight: true
                title: root.title
                value: root.value
                detail: root.detail
                symbol: root.symbol
            }
        }
    }
}
