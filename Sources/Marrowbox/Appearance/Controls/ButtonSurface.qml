import QtQuick
import Marrowbox.Appearance

// The surface of an ActionButton: which fill, border and overlay belong to which emphasis and state.
Rectangle {
    id: root

    required property int emphasis
    required property QtObject accent
    required property bool active
    required property bool focused
    required property bool pressed
    readonly property bool filled: emphasis === ActionButton.Primary || emphasis === ActionButton.Destructive
    readonly property color base: emphasis === ActionButton.Destructive ? Appearance.alertFill
                                                                        : filled ? accent.color : accent.tint
    readonly property real fillOpacity: {
        if (filled)
            return Appearance.opaque;
        if (active)
            return Appearance.activeFill;
        return emphasis === ActionButton.Secondary ? Appearance.secondaryFill : 0;
    }
    readonly property real borderOpacity: {
        if (focused)
            return Appearance.focusedBorder;
        if (active)
            return Appearance.activeBorder;
        return emphasis === ActionButton.Secondary ? Appearance.restBorder : 0;
    }
    readonly property real overlayOpacity: {
        if (!filled || !active)
            return 0;
        return pressed ? Appearance.pressedOverlay : Appearance.activeOverlay;
    }

    radius: Appearance.buttonRadius
    color: Appearance.faded(base, fillOpacity)
    Behavior on color {
        ColorAnimation {
            duration: Appearance.quick
            easing.type: Easing.OutQuad
        }
    }

    // Drawn on the fill: the border of the rectangle itself would take the fill's place.
    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        color: Appearance.faded(Appearance.overlay, root.overlayOpacity)
        border.width: Appearance.hairline
        border.color: Appearance.faded(root.base, root.borderOpacity)

        Behavior on color {
            ColorAnimation {
                duration: Appearance.quick
                easing.type: Easing.OutQuad
            }
        }
        Behavior on border.color {
            ColorAnimation {
                duration: Appearance.quick
                easing.type: Easing.OutQuad
            }
        }
    }

    FocusRing {
        shown: root.focused
        tint: root.emphasis === ActionButton.Destructive ? Appearance.alert : root.accent.tint
    }
}
