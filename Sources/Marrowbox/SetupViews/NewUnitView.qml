import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The sheet that makes a backup.
Sheet {
    id: root

    required property NewUnitModel model

    title: qsTr("A new backup")
    subtitle: qsTr("One source. One safe place for every version.")
    closable: !model.isCreating
    unclosableReason: model.creatingReason
    onOpened: model.appear()

    AccountStep {
        Layout.fillWidth: true
        model: root.model
        enabled: !root.model.isCreating
    }

    SectionEyebrow {
        Layout.topMargin: Appearance.smallGap
        number: qsTr("2")
        title: qsTr("Choose your source")
    }

    SourceStep {
        Layout.fillWidth: true
        model: root.model
        enabled: !root.model.isCreating
    }

    SectionEyebrow {
        Layout.topMargin: Appearance.smallGap
        number: qsTr("3")
        title: qsTr("Choose where to keep it")
    }

    DestinationStep {
        Layout.fillWidth: true
        model: root.model
        enabled: !root.model.isCreating
    }

    TextEntry {
        Layout.fillWidth: true
        Layout.topMargin: Appearance.smallGap
        visible: root.model.hasSource && root.model.hasDestination
        enabled: !root.model.isCreating
        disabledReason: root.model.creatingReason
        label: qsTr("Backup name")
        text: root.model.name
        onEdited: text => root.model.name = text
        onAccepted: root.model.create()
    }

    Connections {
        target: root.model
        function onDismissed() {
            root.close();
        }
    }

    footerContent: [
        NewUnitFooter {
            Layout.fillWidth: true
            model: root.model
        }
    ]
}
