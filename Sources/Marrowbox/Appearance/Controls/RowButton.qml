import QtQuick
import Marrowbox.Appearance

// A button that looks like a line of a list and stands alone.
PressButton {
    id: root

    required property string title
    property string symbol: ""

    spokenName: title
    leftPadding: Appearance.gap
    rightPadding: Appearance.gap
    topPadding: Appearance.smallGap
    bottomPadding: Appearance.smallGap
    implicitHeight: Math.max(Appearance.rowHeight, implicitContentHeight + topPadding + bottomPadding)
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    background: RowSurface {
        accent: root.accent
        active: root.active
        focused: root.visualFocus
    }

    contentItem: RowContent {
        title: root.title
        symbol: root.symbol
        accent: root.accent
    }
}
