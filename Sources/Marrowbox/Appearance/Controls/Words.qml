import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// Text on a screen, in one of the fonts of Appearance. Plain text always: names of files are never markup.
T.Label {
    property int tone: Tone.Neutral

    font: Appearance.body
    color: tone === Tone.Neutral ? Appearance.text : Appearance.toneColor(tone)
    textFormat: Text.PlainText
    elide: wrapMode === Text.NoWrap ? Text.ElideRight : Text.ElideNone
    lineHeight: wrapMode === Text.NoWrap ? 1 : Appearance.lineHeight
    Accessible.name: text
}
