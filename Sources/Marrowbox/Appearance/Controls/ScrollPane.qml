import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Marrowbox.Appearance

// An area that scrolls when its content is taller than it. What gets the focus comes into sight.
Flickable {
    id: root

    readonly property Item focusItem: Window.activeFocusItem

    clip: true
    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: ThinScrollBar {}

    function reveal(item: Item) {
        let ancestor = item;
        while (ancestor && ancestor !== contentItem)
            ancestor = ancestor.parent;
        if (!ancestor || contentHeight <= height)
            return;
        const top = item.mapToItem(contentItem, 0, 0).y - Appearance.mediumGap;
        const bottom = top + item.height + Appearance.mediumGap * 2;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.min(contentHeight - height, bottom - height);
    }

    onFocusItemChanged: if (focusItem)
        reveal(focusItem)
}
