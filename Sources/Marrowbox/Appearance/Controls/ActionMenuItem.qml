import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// One action of a menu.
T.MenuItem {
    id: root

    property string symbol: ""
    property bool destructive: false
    /// An item that is not offered takes no room, and no key leads to it.
    property bool offered: true
    property string disabledReason: qsTr("Not available at the moment.")
    readonly property QtObject accent: Appearance.accentOf(Appearance.theme)
    // What cannot be undone is written in the colour of its own highlight, which stays weak enough to read it.
    readonly property real highlightFill: destructive ? Appearance.badgeFill : Appearance.activeFill
    readonly property color ink: destructive ? Appearance.alert : Appearance.text

    function press() {
        if (!enabled || !offered)
            return;
        triggered();
        if (menu)
            menu.dismiss();
    }

    hoverEnabled: true
    font: Appearance.body
    leftPadding: Appearance.smallGap
    rightPadding: Appearance.gap
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Appearance.controlHeight
    visible: offered
    height: offered ? implicitHeight : 0
    activeFocusOnTab: offered
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.description: enabled ? "" : disabledReason
    Accessible.onPressAction: press()

    background: Rectangle {
        radius: Appearance.smallRadius
        color: Appearance.faded(root.destructive ? Appearance.alert : root.accent.tint,
                                root.highlighted && root.enabled ? root.highlightFill : 0)
    }

    contentItem: RowLayout {
        spacing: Appearance.smallGap

        Icon {
            name: root.symbol
            color: root.ink
        }

        Text {
            Layout.fillWidth: true
            text: root.text
            textFormat: Text.PlainText
            font: root.font
            color: root.ink
            elide: Text.ElideMiddle
        }
    }
}
