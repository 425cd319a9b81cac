import QtQuick
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Asked before history may be thrown away.
Item {
    id: root

    required property UnitSettingsModel model

    visible: false

    Question {
        visible: root.model.confirmsRetention
        title: qsTr("Shorten backup history?")
        message: qsTr("After the next successful snapshot, expired snapshots and file versions they alone reference will be permanently removed. The most recent snapshot is always retained.")
        yesText: qsTr("Apply history limit")
        destructive: true
        onAnsweredYes: root.model.applyHistoryLimit()
        onAnsweredNo: root.model.keepHistory()
    }
}
