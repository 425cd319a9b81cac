import QtQuick
import Marrowbox.Appearance

// What lies behind a line of a list, by its state.
Rectangle {
    id: root

    required property QtObject accent
    required property bool active
    required property bool focused
    property bool selected: false

    radius: Appearance.buttonRadius
    color: {
        if (selected)
            return Appearance.faded(accent.tint, Appearance.activeFill);
        return Appearance.faded(Appearance.text, active ? Appearance.secondaryFill : 0);
    }

    FocusRing {
        anchors.margins: 0
        radius: parent.radius
        shown: root.focused
        tint: root.accent.tint
    }
}
