import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance

// A line of a list: symbol, title, what is said below it, and what stands at its end.
T.ItemDelegate {
    id: root

    default property alias trailing: end.data
    required property string title
    property string subtitle: ""
    property string symbol: ""
    property int subtitleTone: Tone.Neutral
    property bool selected: false
    property bool opens: false
    property string theme: Appearance.theme
    property string disabledReason: qsTr("Not available at the moment.")
    readonly property QtObject accent: Appearance.accentOf(theme)
    readonly property bool active: enabled && (hovered || visualFocus || down)

    function press() {
        if (enabled)
            clicked();
    }

    text: title
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    leftPadding: Appearance.gap
    rightPadding: Appearance.gap
    topPadding: Appearance.smallGap
    bottomPadding: Appearance.smallGap
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(Appearance.rowHeight, implicitContentHeight + topPadding + bottomPadding)
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    Accessible.role: Accessible.ListItem
    Accessible.name: title
    Accessible.description: enabled ? subtitle : disabledReason
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: press()

    background: Rectangle {
        radius: Appearance.buttonRadius
        color: {
            if (root.selected)
                return Appearance.faded(root.accent.tint, Appearance.activeFill);
            return Appearance.faded(Appearance.text, root.active ? Appearance.secondaryFill : 0);
        }

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            shown: root.visualFocus
            tint: root.accent.tint
        }
    }

    contentItem: RowLayout {
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
}
