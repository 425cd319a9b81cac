import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A line of a list: symbol, title, what is said below it, and what stands at its end.
T.ItemDelegate {
    id: root

    default property alias trailing: content.trailing
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

    HelpTip {
        text: root.title
        shown: root.hovered && content.truncated
    }

    background: RowSurface {
        accent: root.accent
        active: root.active
        focused: root.visualFocus
        selected: root.selected
    }

    contentItem: RowContent {
        id: content
        title: root.title
        subtitle: root.subtitle
        subtitleTone: root.subtitleTone
        symbol: root.symbol
        accent: root.accent
        selected: root.selected
        opens: root.opens
    }
}
