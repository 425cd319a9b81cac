import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Where the backup is kept.
Section {
    id: root

    required property NewUnitModel model

    note: model.hasDestination ? "" : model.destinationNote

    RowLayout {
        spacing: Appearance.gap

        Icon {
            name: "externaldrive"
            side: Appearance.mediumIcon
            color: root.model.hasDestination ? Appearance.accentOf(Appearance.theme).ink : Appearance.muted
        }

        ElidedWords {
            Layout.fillWidth: true
            text: root.model.destinationText
            font: root.model.hasDestination ? Appearance.strong : Appearance.body
        }

        ActionButton {
            text: qsTr("Choose folder…")
            enabled: !root.model.isChoosing
            disabledReason: root.model.isCreating ? root.model.creatingReason : qsTr("Choose a folder in the window that has opened.")
            onClicked: root.model.chooseDestination()
        }
    }
}
