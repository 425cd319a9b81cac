import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Forms"

    RowLayout {
        spacing: Appearance.hugeGap

        ColumnLayout {
            Layout.preferredWidth: 1
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: Appearance.largeGap

            Section {
                Layout.fillWidth: true
                title: "Schedule"
                note: "Uses your computer’s time zone. Missed snapshots catch up after waking or reconnecting the destination."

                FormRow {
                    label: "Frequency"
                    Picker {
                        label: "Frequency"
                        choices: [{ value: "daily", title: "Every day" }, { value: "weekly", title: "Every week" }]
                        chosen: "daily"
                    }
                }
                Separator { Layout.fillWidth: true }
                FormRow {
                    label: "Time"
                    NumberStepper { label: "Hour"; to: 23; number: 9 }
                    Words { text: ":"; color: Appearance.muted }
                    NumberStepper { label: "Minute"; to: 59 }
                }
            }

            Section {
                Layout.fillWidth: true
                title: "General"
                Toggle { Layout.fillWidth: true; text: "Start Marrowbox at login"; on: true }
                Separator { Layout.fillWidth: true }
                Toggle { Layout.fillWidth: true; text: "Start Marrowbox at login" }
                Separator { Layout.fillWidth: true }
                Toggle { Layout.fillWidth: true; text: "Start Marrowbox at login"; enabled: false }
            }

            Item { Layout.fillHeight: true }
        }

        ColumnLayout {
            Layout.preferredWidth: 1
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: Appearance.mediumGap

            SectionEyebrow { number: "1"; title: "Choose your source"; Layout.fillWidth: true }
            TextEntry { Layout.fillWidth: true; label: "Backup name"; text: "Family pictures" }
            TextEntry { Layout.fillWidth: true; label: "Send to"; placeholder: "name@example.com"; note: "Summaries go to this address." }
            TextEntry { Layout.fillWidth: true; label: "Send to"; text: "anna@"; error: "Enter a valid email address." }
            TextEntry { Layout.fillWidth: true; label: "Name"; text: "Not now"; enabled: false }
            Picker { Layout.fillWidth: true; label: "Google account"; choices: []; emptyTitle: "Choose an account" }
            Picker {
                Layout.fillWidth: true
                label: "Send"
                choices: [{ value: 1, title: "After every backup" }]
                chosen: 1
                enabled: false
            }
            Segmented { label: "Keep history"; titles: ["Forever", "30 days", "90 days", "1 year"] }
        }
    }

    Item { Layout.fillHeight: true }
}
