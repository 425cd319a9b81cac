import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Sheet"

    Sheet {
        visible: true
        title: "A new backup"
        subtitle: "One source. One safe place for every version."

        SectionEyebrow { number: "1"; title: "Google account" }
        Picker {
            Layout.fillWidth: true
            label: "Google account"
            choices: [{ value: "a", title: "anna@example.com" }]
            chosen: "a"
        }
        SectionEyebrow { number: "2"; title: "Choose your source" }
        Card {
            Layout.fillWidth: true
            padding: Appearance.tinyGap
            spacing: 0
            ListRow { Layout.fillWidth: true; title: "My Drive"; symbol: "folder"; opens: true }
            ListRow { Layout.fillWidth: true; title: "Design team"; symbol: "person.2.crop.square.stack"; opens: true }
        }
        SectionEyebrow { number: "3"; title: "Choose where to keep it" }
        TextEntry { Layout.fillWidth: true; label: "Backup name"; text: "Family pictures" }

        footerContent: [
            Words {
                Layout.fillWidth: true
                text: "You can adjust the schedule and history later."
                font: Appearance.caption
                color: Appearance.muted
                wrapMode: Text.Wrap
            },
            ActionButton { text: "Cancel" },
            ActionButton { text: "Create backup"; emphasis: ActionButton.Primary; enabled: false }
        ]
    }

    Item { Layout.fillHeight: true }
}
