import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// The backups, the way to a new one, and the settings.
Rectangle {
    id: root

    required property UnitListModel units
    property Component menuButton

    signal newBackup
    signal settings

    color: Appearance.sidebar

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Appearance.gap
        anchors.topMargin: Appearance.mediumGap
        spacing: Appearance.smallGap

        RowLayout {
            Layout.leftMargin: Appearance.smallGap
            spacing: Appearance.smallGap

            AppMark {}

            Words {
                Layout.fillWidth: true
                text: qsTr("Marrowbox")
                font: Appearance.subheading
                Accessible.role: Accessible.Heading
            }

            Loader {
                sourceComponent: root.menuButton
            }
        }

        Words {
            Layout.fillWidth: true
            Layout.leftMargin: Appearance.smallGap
            Layout.topMargin: Appearance.mediumGap
            visible: root.units.count === 0
            text: qsTr("A Google Drive folder.\nA place to keep it safe.")
            color: Appearance.muted
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.leftMargin: Appearance.smallGap
            Layout.topMargin: Appearance.mediumGap
            visible: root.units.count > 0

            Eyebrow {
                Layout.fillWidth: true
                text: qsTr("BACKUPS")
                Accessible.role: Accessible.Heading
            }

            IconButton {
                symbol: "plus"
                help: qsTr("New backup")
                onClicked: root.newBackup()
            }
        }

        RowList {
            id: list

            Layout.fillWidth: true
            Layout.fillHeight: true
            label: qsTr("Backups")
            model: root.units
            Accessible.ignored: count === 0
            currentIndex: root.units.selectedRow
            onCurrentItemChanged: if (activeFocus && currentItem)
                currentItem.forceActiveFocus(Qt.TabFocusReason)

            delegate: ListRow {
                required property int index
                required property string name
                required property string sourceIcon
                required property string stopNote
                required theme

                width: list.width
                focusPolicy: Qt.NoFocus
                title: name
                symbol: sourceIcon
                subtitle: stopNote
                subtitleTone: Tone.Warning
                selected: index === root.units.selectedRow
                onClicked: root.units.select(index)
            }
        }

        RowButton {
            Layout.fillWidth: true
            title: qsTr("Settings")
            symbol: "gearshape"
            onClicked: root.settings()
        }
    }
}
