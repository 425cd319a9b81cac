import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// Whose backup this is, its name, and in one sentence how it stands.
ColumnLayout {
    id: root

    required property UnitPageModel model
    readonly property var page: model.page

    spacing: Appearance.tinyGap

    RowLayout {
        Layout.fillWidth: true
        Layout.bottomMargin: Appearance.largeGap
        spacing: Appearance.gap

        Rectangle {
            implicitWidth: Appearance.rowHeight
            implicitHeight: Appearance.rowHeight
            radius: Appearance.tileRadius
            color: Appearance.faded(AppearanceState.accent.tint, Appearance.activeFill)

            Icon {
                anchors.centerIn: parent
                name: root.page.originIcon
                side: Appearance.mediumIcon
                color: AppearanceState.accent.ink
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            Eyebrow {
                Layout.fillWidth: true
                text: root.page.eyebrow
                color: AppearanceState.accent.ink
            }

            ElidedWords {
                Layout.fillWidth: true
                text: root.page.accountLine
                color: Appearance.muted
            }
        }

        SettingsGear {
            onClicked: root.model.openOptions()
        }
    }

    Eyebrow {
        Layout.fillWidth: true
        text: qsTr("YOUR FILES, CLOSE TO HOME")
    }

    ElidedWords {
        Layout.fillWidth: true
        text: root.page.name
        font: Appearance.hero
        Accessible.role: Accessible.Heading
    }

    Words {
        Layout.fillWidth: true
        text: root.page.statusTitle
        font: Appearance.heading
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
