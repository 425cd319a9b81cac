import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A menu. Its items are ActionMenuItem and MenuLine.
T.Menu {
    id: root

    margins: Appearance.smallGap
    padding: Appearance.tinyGap
    cascade: false
    implicitWidth: Math.max(Appearance.menuWidth, contentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    contentItem: ListView {
        implicitHeight: contentHeight
        implicitWidth: contentItem.childrenRect.width
        model: root.contentModel
        currentIndex: root.currentIndex
        highlightMoveDuration: 0
        interactive: contentHeight > height
        clip: interactive
    }

    background: PopupSurface {}
}
