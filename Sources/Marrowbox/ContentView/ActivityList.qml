import QtQuick
import Marrowbox.Appearance
import Marrowbox.ContentView

// The runs of a backup. A long list scrolls in itself, so that what follows it stays within reach.
RowList {
    id: root

    implicitHeight: Math.min(contentHeight, Appearance.mostActivityHeight)
    label: qsTr("Recent activity & email delivery")
    spacing: 0
    onCurrentItemChanged: if (activeFocus && currentItem)
        currentItem.forceActiveFocus(Qt.TabFocusReason)

    delegate: ActivityRow {
        width: root.width
        isLast: index === root.count - 1
    }
}
