import QtQuick
import Marrowbox.Appearance

// Behind a control that opens a list or a menu.
Rectangle {
    required property QtObject accent
    required property bool hovered
    property bool focused: false

    radius: Appearance.buttonRadius
    color: Appearance.faded(accent.tint, hovered ? Appearance.activeFill : Appearance.menuFill)
    border.width: Appearance.hairline
    border.color: Appearance.faded(accent.tint, hovered ? Appearance.menuActiveBorder : Appearance.menuBorder)

    FocusRing {
        shown: parent.focused
        tint: parent.accent.tint
    }
}
