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

    title: "Marrowbox"
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
    }

    SetupSheets {
        screens: root.screens
    }

    // The settings of a backup are a sheet like the others.
    Connections {
        target: root.model.unitPage

        function onOpenedChanged() {
            if (!root.model.unitPage.showsOptions)
                return;
            root.model.unitPage.showsOptions = false;
            root.screens.editUnit(root.model.unitPage.unitID);
        }
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
        sequences: [StandardKey.Quit]
        onActivated: root.quitting.request()
    }
}
