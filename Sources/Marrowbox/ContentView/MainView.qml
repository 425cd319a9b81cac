import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Marrowbox.Appearance

// All that the main window holds: the sidebar, the page of the selected backup, and what lies over them. What other families
// of screens bring stands in slots: the welcome, and the sheets, each of which opens itself and closes with its signal.
Item {
    id: root

    required property MainWindowModel model
    property Component welcome
    property Component newBackupSheet
    property Component settingsSheet
    property Component unitSettingsSheet
    property Component menuButton
    readonly property bool isSeen: Window.visibility !== Window.Hidden && Window.visibility !== Window.Minimized

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
            T.SplitView.preferredWidth: Appearance.sidebarWidth
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

    SheetSlot {
        shown: root.model.showsNewUnit
        sheet: root.newBackupSheet
        onClosed: root.model.showsNewUnit = false
    }

    SheetSlot {
        shown: root.model.showsSettings
        sheet: root.settingsSheet
        onClosed: root.model.showsSettings = false
    }

    SheetSlot {
        shown: root.model.unitPage.showsOptions
        sheet: root.unitSettingsSheet
        onClosed: root.model.unitPage.showsOptions = false
    }

    Question {
        title: qsTr("A little attention needed")
        message: root.model.errorMessage
        noText: qsTr("OK")
        visible: message !== ""
        onAnsweredNo: root.model.dismissError()
    }
}
