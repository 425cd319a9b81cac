import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The welcome of a person who has no account connected yet.
ColumnLayout {
    id: root

    required property WelcomeModel model

    spacing: Appearance.smallGap

    Words {
        Layout.fillWidth: true
        text: root.model.subtitle
        font: Appearance.lead
        wrapMode: Text.Wrap
    }

    Words {
        Layout.fillWidth: true
        text: root.model.introduction
        color: Appearance.muted
        wrapMode: Text.Wrap
    }

    ConnectButton {
        Layout.topMargin: Appearance.mediumGap
        connection: root.model.connection
        onWanted: root.model.connection.connectAccount()
    }
}
