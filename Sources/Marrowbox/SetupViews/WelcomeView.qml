import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// What the window shows while no backup is selected.
ScrollPane {
    id: root

    required property WelcomeModel model

    contentHeight: Math.max(height, page.implicitHeight + Appearance.pageMargin * 2)
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Welcome")

    ColumnLayout {
        id: page

        x: Math.max(Appearance.pageMargin, (root.width - width) / 2)
        y: (root.contentHeight - height) / 2
        width: Math.min(Appearance.textWidth, root.width - Appearance.pageMargin * 2)
        spacing: Appearance.smallGap

        AppMark {
            side: Appearance.heroIcon
            Layout.bottomMargin: Appearance.gap
        }

        Eyebrow {
            text: qsTr("YOUR FILES, CLOSE TO HOME")
        }

        Words {
            Layout.fillWidth: true
            text: qsTr("Welcome to Marrowbox")
            font: Appearance.hero
            wrapMode: Text.Wrap
            lineHeight: 1
            spokenRole: Accessible.Heading
        }

        WelcomeIntroduction {
            visible: !root.model.hasAccounts
            model: root.model
        }

        WelcomeConnected {
            visible: root.model.hasAccounts
            model: root.model
        }

        Separator {
            Layout.fillWidth: true
            Layout.topMargin: Appearance.hugeGap
            Layout.bottomMargin: Appearance.mediumGap
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Appearance.largeGap

            Repeater {
                model: root.model.notes

                WelcomeNote {
                    required property var modelData

                    Layout.fillWidth: true
                    Layout.alignment: Qt.AlignTop
                    Layout.preferredWidth: Appearance.fieldWidth
                    icon: modelData.icon
                    title: modelData.title
                    detail: modelData.detail
                }
            }
        }
    }
}
