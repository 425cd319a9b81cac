import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A list of any length: rows that are out of sight do not exist. The arrow keys move between rows.
ListView {
    id: root

    required property string label

    clip: true
    spacing: Appearance.hairGap
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    keyNavigationEnabled: true
    // A list that has the focus keeps it while its rows change.
    activeFocusOnTab: count > 0 || activeFocus
    reuseItems: true
    onActiveFocusChanged: if (activeFocus && currentIndex < 0)
        currentIndex = 0
    onCountChanged: if (activeFocus && currentIndex < 0)
        currentIndex = 0

    Accessible.role: Accessible.List
    Accessible.name: label

    T.ScrollBar.vertical: ThinScrollBar {
        policy: root.interactive ? T.ScrollBar.AsNeeded : T.ScrollBar.AlwaysOff
    }
}
