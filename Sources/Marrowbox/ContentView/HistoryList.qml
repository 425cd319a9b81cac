import QtQuick
import Marrowbox.Appearance
import Marrowbox.ContentView

// The rows of a history that are in sight. It does not scroll by itself: it shows what lies at its place.
RowList {
    id: root

    required property bool isExploring
    /// How far below the first row the list begins.
    required property real place
    readonly property int rowHeight: Appearance.historyRowHeight

    function settle() {
        contentY = originY + place;
    }

    label: qsTr("Backup history")
    interactive: false
    spacing: 0
    highlightFollowsCurrentItem: false
    onPlaceChanged: settle()
    onOriginYChanged: settle()
    onContentYChanged: if (contentY !== originY + place)
        settle()
    onCurrentItemChanged: if (activeFocus && currentItem)
        currentItem.forceActiveFocus(Qt.TabFocusReason)

    delegate: HistoryRow {
        width: root.width
        height: root.rowHeight
        history: root.model
        isExploring: root.isExploring
        isLast: index === root.count - 1
    }
}
