import QtQuick
import Marrowbox.Appearance

// A long name or path: what does not fit is left out in the middle, and a tool tip shows it whole.
Words {
    id: root

    elide: Text.ElideMiddle

    HoverHandler {
        id: hover
    }

    HelpTip {
        text: root.text
        shown: hover.hovered && root.truncated
    }
}
