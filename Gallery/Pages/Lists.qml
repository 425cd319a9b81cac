import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Lists"

    RowLayout {
        spacing: Appearance.hugeGap

        Rectangle {
            Layout.preferredWidth: Appearance.sidebarWidth
            Layout.fillHeight: true
            color: Appearance.sidebar
            radius: Appearance.cardRadius

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: Appearance.gap
                spacing: Appearance.hairGap

                Eyebrow { text: "BACKUPS"; Layout.margins: Appearance.smallGap }
                ListRow { Layout.fillWidth: true; title: "Family pictures"; symbol: "folder"; selected: true }
                ListRow { Layout.fillWidth: true; title: "Design team"; symbol: "person.2.crop.square.stack"; theme: "coral" }
                ListRow {
                    Layout.fillWidth: true
                    title: "A backup with a name that is far too long"
                    subtitle: "Stopped · reconnect"
                    subtitleTone: Tone.Warning
                    symbol: "folder"
                    theme: "sage"
                }
                Item { Layout.fillHeight: true }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: Appearance.mediumGap

            Card {
                Layout.fillWidth: true
                padding: Appearance.tinyGap
                spacing: 0
                ListRow { Layout.fillWidth: true; title: "My Drive"; symbol: "folder"; opens: true }
                ListRow { Layout.fillWidth: true; title: "Design team"; symbol: "person.2.crop.square.stack"; opens: true; down: true }
                ListRow {
                    Layout.fillWidth: true
                    title: "21 Nov 2026, 09:00"
                    subtitle: "12 new · 4 updated · 1,204 unchanged"
                    Icon { name: "checkmark.circle.fill"; color: Appearance.success }
                    IconButton { symbol: "eject"; help: "Eject snapshot" }
                    MenuButton { help: "Snapshot actions" }
                }
            }

            Disclosure {
                Layout.fillWidth: true
                title: "Recent activity & email delivery"
                expanded: true
                Words { text: "Twelve files were backed up."; Layout.leftMargin: Appearance.hugeGap }
            }

            Disclosure { Layout.fillWidth: true; title: "Developer connection" }

            Card {
                Layout.fillWidth: true
                EmptyState {
                    Layout.fillWidth: true
                    symbol: "person.crop.circle.badge.plus"
                    text: "Connect a Google account to get started."
                    ActionButton { text: "Connect Google account"; emphasis: ActionButton.Primary }
                }
            }
        }
    }
}
