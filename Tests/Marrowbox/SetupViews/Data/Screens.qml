import QtQuick
import Marrowbox.SetupViews

// The welcome screen with the sheets over it, as a window has them.
Item {
    id: root

    required property SetupScreens screens

    WelcomeView {
        anchors.fill: parent
        model: root.screens.welcome
    }

    SetupSheets {
        anchors.fill: parent
        screens: root.screens
    }
}
