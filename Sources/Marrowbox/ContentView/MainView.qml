import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Marrowbox.Appearance
import Marrowbox.ContentView

// All that the main window holds but the sheets: the sidebar, and the page of the selected backup or else the welcome, which
// another family of screens brings.
Item {
    id: root

    required property MainWindowModel model
    property Component welcome
    property Component menuButton
    readonly property bool isSeen: Window.visibility !== Window.Hidden && Window.visibility !== Window.Minimized

    signal unitSettingsWanted(string unitID)

    Connections {
        target: root.model.unitPage

        function onOptionsWanted(unitID) {
            root.unitSettingsWanted(unitID);
        }
    }

    Binding {
        target: AppearanceState
        property: "theme"
        value: root.model.accent
    }

    Binding {
        target: root.model
        property: "isVisible"
        value: root.isSeen
    }

    T.SplitView {
        anchors.fill: parent

        handle: Separator {}

        Sidebar {
            T.SplitView.minimumWidth: Appearance.leastSidebarWidth
            T.SplitView.preferredWidth: root.width < Appearance.windowSize.width ? Appearance.leastSidebarWidth : Appearance.sidebarWidth
            T.SplitView.maximumWidth: Appearance.mostSidebarWidth
            units: root.model.units
            menuButton: root.menuButton
            onNewBackup: root.model.showsNewUnit = true
            onSettings: root.model.showsSettings = true
        }

        ColumnLayout {
            T.SplitView.fillWidth: true
            spacing: 0

            Banner {
                Layout.fillWidth: true
                Layout.margins: Appearance.mediumGap
                visible: text !== ""
                symbol: "externaldrive.badge.exclamationmark"
                text: root.model.mountIssue
                action: qsTr("Retry")
                onActed: root.model.retryMounts()
            }

            Loader {
                Layout.fillWidth: true
                Layout.fillHeight: true
                sourceComponent: root.model.unitPage.hasUnit ? unitPage : root.welcome
            }
        }
    }

    Component {
        id: unitPage

        UnitView {
            model: root.model.unitPage
        }
    }

    Question {
        title: qsTr("A little attention needed")
        message: root.model.errorMessage
        noText: qsTr("OK")
        visible: message !== ""
        onAnsweredNo: root.model.dismissError()
    }
}
