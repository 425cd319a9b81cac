import QtQuick
import Marrowbox.Appearance

// Text on a screen, in one of the fonts of Appearance. Plain text always: names of files are never markup.
Text {
    property int tone: Tone.Neutral
    /// Accessible.Heading for what stands above a part of a page.
    property int spokenRole: Accessible.StaticText

    font: Appearance.body
    color: tone === Tone.Neutral ? Appearance.text : Appearance.toneColor(tone)
    textFormat: Text.PlainText
    elide: wrapMode === Text.NoWrap ? Text.ElideRight : Text.ElideNone
    lineHeight: wrapMode === Text.NoWrap ? 1 : Appearance.lineHeight
    // The room between lines comes below each of them; below the last there is nothing to keep apart.
    bottomPadding: lineHeight === 1 ? 0 : AppearanceState.heightOfLine(font) * (1 - lineHeight)
    Accessible.name: text
    Accessible.role: spokenRole
}
