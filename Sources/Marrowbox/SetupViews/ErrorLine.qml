import QtQuick
import Marrowbox.Appearance

// A failure in a sheet. It is told to a screen reader as it appears.
StatusLine {
    visible: text !== ""
    symbol: "exclamationmark.circle"
    tone: Tone.Alert
    wrapped: true
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
}
