import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What became of the mail of a run.
RowLayout {
    id: root

    required property string text
    required property string icon
    required property string tone
    property string fullText: text
    property bool compact: false
    readonly property color ink: {
        switch (tone) {
        case "sent":
            return Appearance.success;
        case "pending":
            return Appearance.secondary;
        case "problem":
            return Appearance.alert;
        }
        return Appearance.faint;
    }

    spacing: Appearance.tinyGap

    HoverHandler {
        id: hover
    }

    Icon {
        name: root.icon
        side: Appearance.smallIcon
        color: root.ink
    }

    Words {
        id: words

        Layout.fillWidth: true
        text: root.text
        font: root.compact ? Appearance.compact : Appearance.small
        color: root.ink

        HelpTip {
            text: root.fullText
            shown: hover.hovered && (root.fullText !== root.text || words.truncated)
        }
    }
}
