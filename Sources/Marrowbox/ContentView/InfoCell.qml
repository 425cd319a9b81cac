import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// One fact about a backup. With a link it is a button.
PressCard {
    id: root

    required property string title
    required property string value
    required property string detail
    required property string symbol
    property string link: ""
    readonly property bool opens: link !== ""

    signal opened

    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.preferredWidth: 1
    enabled: opens
    padding: Appearance.mediumGap
    font: Appearance.body
    help: opens ? qsTr("Open in Google Drive") : ""
    disabledReason: detail
    spokenName: qsTr("%1: %2").arg(title).arg(value)
    Accessible.role: opens ? Accessible.Button : Accessible.Grouping
    onClicked: opened()

    contentItem: ColumnLayout {
        spacing: Appearance.tinyGap

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Appearance.tinyGap
            spacing: Appearance.smallGap

            Icon {
                name: root.symbol
                color: root.accent.ink
            }

            Eyebrow {
                Layout.fillWidth: true
                text: root.title
            }

            Icon {
                name: root.opens ? "arrow.up.right" : ""
                side: Appearance.smallIcon
                color: root.active ? root.accent.ink : Appearance.muted
            }
        }

        ElidedWords {
            Layout.fillWidth: true
            text: root.value
            font: Appearance.subheading
        }

        Words {
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: root.detail
            font: Appearance.caption
            color: Appearance.muted
            wrapMode: Text.Wrap
        }
    }
}
