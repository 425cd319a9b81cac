import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Status"

    Banner {
        Layout.fillWidth: true
        title: "This backup is not running."
        text: "Its Google account is disconnected. Reconnect it to resume automatic backups. Existing backups are untouched."
        action: "Reconnect"
    }

    Banner {
        Layout.fillWidth: true
        tone: Tone.Alert
        symbol: "externaldrive.badge.exclamationmark"
        text: "A mounted snapshot could not be checked."
        action: "Retry"
    }

    ProgressLine { Layout.fillWidth: true; label: "Backing up"; done: 64; total: 100 }
    ProgressLine { Layout.fillWidth: true; label: "Backing up"; done: 0; total: 100; theme: "sage" }
    ProgressLine { Layout.fillWidth: true; label: "Looking"; theme: "coral" }

    RowLayout {
        spacing: Appearance.smallGap
        Badge { text: "Neutral" }
        Badge { text: "Blue"; tone: Tone.Accent }
        Badge { text: "Sent"; tone: Tone.Good; symbol: "checkmark" }
        Badge { text: "Reconnect required"; tone: Tone.Warning }
        Badge { text: "Failed"; tone: Tone.Alert }
    }

    StatusLine { symbol: "arrow.triangle.2.circlepath"; text: "Next snapshot 22 Nov 2026, 09:00" }
    StatusLine { symbol: "exclamationmark.circle"; text: "The destination is not connected."; tone: Tone.Warning }
    StatusLine { symbol: "envelope"; text: "Summary sent"; tone: Tone.Good }
    StatusLine { symbol: "envelope.badge.exclamationmark"; text: "Summary could not be sent"; tone: Tone.Alert }
    StatusLine { symbol: "envelope.slash"; text: "No summary"; tone: Tone.Off }

    Item { Layout.fillHeight: true }
}
