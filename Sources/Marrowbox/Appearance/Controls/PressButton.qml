import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// What every button shares: Space and Return press it, assistive technology presses it, and a disabled one refuses and says why.
T.Button {
    id: root

    /// Shown beside the pointer and read out after the name.
    property string help: ""
    property bool showsHelp: true
    property string spokenName: text
    /// Read out while the button is disabled, since assistive technology is not told that it is.
    property string disabledReason: qsTr("Not available at the moment.")
    /// What comes in its place when it vanishes, and gets its focus; else the next of the chain does.
    property Item successor: null
    property string theme: Appearance.theme
    readonly property QtObject accent: Appearance.accentOf(theme)
    readonly property bool active: enabled && (hovered || visualFocus || down)

    function press() {
        if (!enabled)
            return;
        if (checkable)
            toggle();
        clicked();
    }

    // Once all else has settled, so that what comes in its place can be the next. From inside of what has vanished the chain
    // leads nowhere.
    function handOnFocus() {
        if (visible || !activeFocus)
            return;
        if (successor && successor.visible && successor.enabled)
            return successor.forceActiveFocus(Qt.TabFocusReason);
        let vanished = root;
        while (vanished.parent && !vanished.parent.visible)
            vanished = vanished.parent;
        vanished.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason);
    }

    onVisibleChanged: if (!visible && activeFocus)
        Qt.callLater(handOnFocus)
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    font: Appearance.button
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    Accessible.role: Accessible.Button
    Accessible.name: spokenName
    Accessible.description: {
        if (!enabled)
            return disabledReason;
        return help !== spokenName ? help : ""; // once is enough
    }
    Accessible.onPressAction: press()

    HelpTip {
        text: root.help
        shown: root.showsHelp && root.hovered && !root.down
    }
}
