import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What stands below the history: recent runs, and the way to remove the backup.
ColumnLayout {
    id: root

    required property UnitPageModel model

    spacing: Appearance.largeGap

    Connections {
        target: root.model

        function onOpenedChanged() {
            activity.expanded = root.model.showsActivity;
        }
    }

    Disclosure {
        id: activity

        Layout.fillWidth: true
        Layout.topMargin: Appearance.largeGap
        visible: root.model.activity.count > 0
        title: qsTr("Recent activity & email delivery")
        Component.onCompleted: expanded = root.model.showsActivity
        onExpandedChanged: root.model.showsActivity = expanded

        ActivityList {
            Layout.fillWidth: true
            model: activity.expanded ? root.model.activity : null // nobody sees rows of a closed one
        }
    }

    Separator {
        Layout.fillWidth: true
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.pageMargin
        spacing: Appearance.mediumGap

        Words {
            Layout.fillWidth: true
            text: qsTr("Removing this backup keeps the files it has already saved.")
            font: Appearance.caption
            color: Appearance.muted
            wrapMode: Text.Wrap
        }

        ActionButton {
            text: qsTr("Remove backup…")
            emphasis: ActionButton.Destructive
            enabled: !root.model.page.isBusy
            disabledReason: qsTr("Wait until the backup has finished, or cancel it first.")
            onClicked: root.model.confirmsRemove = true
        }
    }
}
