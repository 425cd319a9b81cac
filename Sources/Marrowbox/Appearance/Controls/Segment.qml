import QtQuick
import Marrowbox.Appearance

// One choice of a Segmented.
PressButton {
    id: root

    required property bool chosen
    required property bool isTab

    focusPolicy: chosen ? Qt.TabFocus : Qt.NoFocus
    leftPadding: Appearance.mediumGap
    rightPadding: Appearance.mediumGap
    topPadding: Appearance.tinyGap + Appearance.hairGap
    bottomPadding: topPadding

    Accessible.role: isTab ? Accessible.PageTab : Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.selected: chosen

    background: Rectangle {
        radius: Appearance.smallRadius
        color: root.chosen ? Appearance.card : Appearance.faded(Appearance.text, root.active ? Appearance.secondaryFill : 0)
        border.width: Appearance.hairline
        border.color: root.chosen ? Appearance.faded(Appearance.text, Appearance.menuBorder) : "transparent"

        FocusRing {
            shown: root.visualFocus
            cornerRadius: Appearance.smallRadius
            tint: root.accent.tint
        }
    }

    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font: root.font
        color: root.chosen ? root.accent.ink : Appearance.text
        horizontalAlignment: Text.AlignHCenter
    }
}
