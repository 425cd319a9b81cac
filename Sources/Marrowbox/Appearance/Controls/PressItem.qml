import QtQuick
import Marrowbox.Appearance

// What is pressed and is no button to assistive technology, but a tab or one of several choices: a button has its role for good.
Item {
    id: root

    required property bool chosen
    property string text: ""
    property string help: ""
    property string spokenName: text
    property int spokenRole: Accessible.RadioButton
    property string disabledReason: qsTr("Not available at the moment.")
    property string theme: Appearance.theme
    readonly property QtObject accent: Appearance.accentOf(theme)
    readonly property bool active: enabled && (hover.hovered || tap.pressed || activeFocus)

    signal clicked

    function press() {
        if (enabled)
            clicked();
    }

    activeFocusOnTab: true
    Keys.onSpacePressed: press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    Accessible.role: spokenRole
    Accessible.name: spokenName
    Accessible.description: enabled ? help : disabledReason
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.selectable: true
    Accessible.selected: chosen
    Accessible.onPressAction: press()

    HoverHandler {
        id: hover
    }

    TapHandler {
        id: tap
        onTapped: root.press()
    }
}
