import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A symbol and a line of text that belong together.
RowLayout {
    id: root

    required property string text
    property string symbol: ""
    property int tone: Tone.Neutral
    property color ink: Appearance.toneColor(tone)
    property color iconInk: ink
    property alias font: words.font
    property bool wrapped: false

    Layout.fillHeight: false
    spacing: Appearance.smallGap - Appearance.hairGap

    FontMetrics {
        id: metrics
        font: words.font
    }

    Icon {
        Layout.alignment: root.wrapped ? Qt.AlignTop : Qt.AlignVCenter
        Layout.topMargin: root.wrapped ? Math.round((metrics.height - height) / 2) : 0 // beside the first line
        name: root.symbol
        color: root.iconInk
    }

    Words {
        id: words
        Layout.fillWidth: true
        text: root.text
        color: root.ink
        wrapMode: root.wrapped ? Text.Wrap : Text.NoWrap
    }
}
