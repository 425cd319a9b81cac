import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A pill with a word in it. Its tone colours the pill and the dot or symbol; the word stays readable on it.
Rectangle {
    id: root

    required property string text
    property int tone: Tone.Neutral
    property string symbol: ""
    readonly property color ink: Appearance.toneColor(tone)

    implicitWidth: row.implicitWidth + Appearance.smallGap * 2
    implicitHeight: row.implicitHeight + Appearance.tinyGap
    radius: height / 2
    color: Appearance.faded(ink, Appearance.badgeFill)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    RowLayout {
        id: row
        anchors.centerIn: parent
        width: Math.min(implicitWidth, root.width - Appearance.smallGap * 2)
        spacing: Appearance.tinyGap

        Rectangle {
            visible: root.symbol === "" && root.tone !== Tone.Neutral
            implicitWidth: Appearance.dot
            implicitHeight: Appearance.dot
            radius: Appearance.dot / 2
            color: root.ink
        }

        Icon {
            name: root.symbol
            side: Appearance.tinyIcon
            color: root.ink
        }

        Text {
            Layout.fillWidth: true
            text: root.text
            textFormat: Text.PlainText
            font: Appearance.pill
            color: root.tone === Tone.Neutral ? Appearance.muted : Appearance.text
            elide: Text.ElideRight
        }
    }
}
