import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// What is backed up: the chosen place, or the way to one.
Card {
    id: root

    required property NewUnitModel model
    readonly property bool hasAccount: model.accountID !== ""

    Words {
        Layout.fillWidth: true
        visible: !root.hasAccount
        text: root.model.missing
        color: Appearance.muted
        wrapMode: Text.Wrap
    }

    RowLayout {
        visible: root.model.hasSource
        spacing: Appearance.gap

        Icon {
            name: root.model.sourceSymbol
            side: Appearance.mediumIcon
            color: Appearance.accentOf(Appearance.theme).ink
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            ElidedWords {
                Layout.fillWidth: true
                text: root.model.sourceName
                font: Appearance.strong
            }

            Words {
                Layout.fillWidth: true
                text: root.model.sourceKind
                font: Appearance.caption
                color: Appearance.muted
            }
        }

        ActionButton {
            text: qsTr("Change")
            spokenName: qsTr("Change source")
            disabledReason: root.model.creatingReason
            onClicked: root.model.changeSource()
        }
    }

    FolderBrowser {
        Layout.fillWidth: true
        visible: root.hasAccount && !root.model.hasSource
        browser: root.model.browser
        onUsed: root.model.useFolder()
    }
}
