import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Type"

    ColumnLayout {
        spacing: Appearance.mediumGap

        Eyebrow { text: "YOUR FILES, CLOSE TO HOME" }
        Words { text: "Your files are in a safe place."; font: Appearance.hero }
        Words { text: "Your files are in a safe place."; font: Appearance.title }
        Words { text: "Backup settings"; font: Appearance.heading }
        Words { text: "Choose where to keep it"; font: Appearance.subheading }
        Words { text: "Next, create your first backup."; font: Appearance.lead }
        Words { text: "Each date is a complete view of your files." }
        Words { text: "Each date is a complete view of your files."; font: Appearance.strong }
        Words { text: "12 new · 4 updated · 1,204 unchanged"; font: Appearance.caption; color: Appearance.muted }
        Words { text: "Stopped · reconnect"; font: Appearance.small; color: Appearance.warning }
        Words { text: "Mail sent at 09:12"; font: Appearance.compact; color: Appearance.success }
        ElidedWords {
            Layout.preferredWidth: Appearance.fieldWidth
            text: "/media/anna/Archive Disk/Backups/Family pictures of many years"
        }
    }

    Item { Layout.fillHeight: true }
}
