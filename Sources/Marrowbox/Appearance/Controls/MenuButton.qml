import QtQuick
import Marrowbox.Appearance

// A small button that opens a menu below itself. Its children are the menu's items.
IconButton {
    id: root

    default property alias items: menu.contentData
    readonly property bool menuShown: menu.visible

    symbol: "ellipsis"
    showsHelp: !menuShown
    onClicked: menu.visible ? menu.close() : menu.popup(root, root.width - menu.implicitWidth, root.height + Appearance.tinyGap)

    ActionMenu {
        id: menu
    }
}
