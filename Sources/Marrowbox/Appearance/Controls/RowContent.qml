import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// What stands in a line of a list: symbol, title, what is said below it, and what stands at its end.
RowLayout {
    id: root

    default property alias trailing: end.data
    required property string title
    required property QtObject accent
    property string subtitle: ""
    property string symbol: ""
    property int subtitleTone: Tone.Neutral
    property bool selected: false
    property bool opens: false
    /// Whether the middle of the title is left out.
    readonly property bool truncated: name.truncated

    spacing: Appearance.gap

    Icon {
        name: root.symbol
        side: Appearance.mediumIcon
        color: root.accent.ink
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Appearance.hairGap

        Text {
            id: name
            Layout.fillWidth: true
            text: root.title
            textFormat: Text.PlainText
            font: root.selected ? Appearance.strong : Appearance.body
            color: Appearance.text
            elide: Text.ElideMiddle
        }

        Text {
            Layout.fillWidth: true
            visible: text !== ""
            text: root.subtitle
            textFormat: Text.PlainText
            font: Appearance.small
            color: Appearance.toneColor(root.subtitleTone)
            elide: Text.ElideRight
        }
    }

    RowLayout {
        id: end
        spacing: Appearance.tinyGap
        visible: children.length > 0
    }

    Icon {
        name: root.opens ? "chevron.right" : ""
        side: Appearance.smallIcon
        color: Appearance.muted
    }
}
