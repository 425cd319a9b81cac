import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A button with a text, and a symbol before or after it. One primary button a screen.
PressButton {
    id: root

    enum Emphasis { Primary, Secondary, Quiet, Destructive }

    property int emphasis: ActionButton.Secondary
    property string symbol: ""
    property bool symbolAfter: false
    readonly property color labelColor: {
        if (emphasis === ActionButton.Destructive)
            return Appearance.alertLabel;
        if (emphasis === ActionButton.Primary)
            return accent.onColor;
        return active ? accent.ink : Appearance.text;
    }

    leftPadding: Appearance.buttonSidePadding
    rightPadding: Appearance.buttonSidePadding
    topPadding: Appearance.buttonPadding
    bottomPadding: Appearance.buttonPadding
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity
    scale: enabled && down ? Appearance.pressedScale : 1

    background: ButtonSurface {
        emphasis: root.emphasis
        accent: root.accent
        active: root.active
        focused: root.visualFocus
        pressed: root.down
    }

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight

        RowLayout {
            id: row
            anchors.centerIn: parent
            width: Math.min(implicitWidth, parent.width)
            spacing: Appearance.smallGap - Appearance.hairGap
            layoutDirection: root.symbolAfter ? Qt.RightToLeft : Qt.LeftToRight

            Icon {
                name: root.symbol
                color: root.labelColor
            }

            Text {
                text: root.text
                textFormat: Text.PlainText
                font: root.font
                color: root.labelColor
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
    }
}
