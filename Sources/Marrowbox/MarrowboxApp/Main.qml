import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance
import Marrowbox.ContentView
import Marrowbox.MarrowboxApp
import Marrowbox.SetupViews

// The one window of the program.
T.ApplicationWindow {
    id: root

    required property MainWindowModel model
    required property SetupScreens screens
    required property Quitting quitting

    title: qsTr("Marrowbox")
    width: Appearance.windowSize.width
    height: Appearance.windowSize.height
    minimumWidth: Appearance.leastWindowSize.width
    minimumHeight: Appearance.leastWindowSize.height
    color: Appearance.window

    MainView {
        anchors.fill: parent
        model: root.model
        welcome: welcome
        menuButton: programMenu
        onUnitSettingsWanted: unitID => root.screens.editUnit(unitID)
    }

    SetupSheets {
        screens: root.screens
    }

    Component {
        id: welcome

        WelcomeView {
            model: root.screens.welcome
        }
    }

    Component {
        id: programMenu

        ProgramMenu {
            onNewBackup: root.model.showsNewUnit = true
            onSettings: root.model.showsSettings = true
            onQuit: root.quitting.request()
        }
    }

    Question {
        title: root.quitting.question
        message: root.quitting.explanation
        noText: root.quitting.keepRunningText
        yesText: root.quitting.quitText
        noIsDefault: true
        visible: root.quitting.isAsking
        onAnsweredNo: root.quitting.keepRunning()
        onAnsweredYes: root.quitting.quit()
    }

    Shortcut {
        sequence: "Ctrl+,"
        onActivated: root.model.showsSettings = true
    }
    Shortcut {
        sequences: [StandardKey.New]
        onActivated: root.model.showsNewUnit = true
    }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: root.close()
    }
    Shortcut {
        sequence: "Ctrl+Q" // a standard key for it is known on some desktops only
        onActivated: root.quitting.request()
    }
}
