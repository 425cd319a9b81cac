import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Where the backup is kept.
Card {
    id: root

    required property NewUnitModel model

    RowLayout {
        spacing: Appearance.gap

        Icon {
            name: "externaldrive"
            side: Appearance.mediumIcon
            color: root.model.hasDestination ? Appearance.accentOf(Appearance.theme).ink : Appearance.muted
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            ElidedWords {
                Layout.fillWidth: true
                text: root.model.destinationText
                font: root.model.hasDestination ? Appearance.strong : Appearance.body
            }

            Words {
                Layout.fillWidth: true
                visible: !root.model.hasDestination
                text: root.model.destinationNote
                font: Appearance.caption
                color: Appearance.muted
                wrapMode: Text.Wrap
            }
        }

        ActionButton {
            text: qsTr("Choose folder…")
            enabled: !root.model.isChoosing
            onClicked: root.model.chooseDestination()
        }
    }
}
