import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// Divides the items of a menu.
T.MenuSeparator {
    implicitHeight: Appearance.smallGap + Appearance.hairline
    implicitWidth: Appearance.menuWidth
    topPadding: Appearance.tinyGap
    bottomPadding: Appearance.tinyGap
    contentItem: Separator {}
}
