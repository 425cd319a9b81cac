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
        onMenuWanted: button => menu.openFor(snapshotID, button)
    }

    // One for all rows, since a row has to be made quickly.
    ActionMenu {
        id: menu

        property string snapshotID

        function openFor(wanted: string, button: Item) {
            snapshotID = wanted;
            popup(button, button.width - implicitWidth, button.height + Appearance.tinyGap);
        }

        ActionMenuItem {
            text: root.model.mountTitle
            symbol: "externaldrive"
            onTriggered: root.model.mount(menu.snapshotID)
        }

        ActionMenuItem {
            text: qsTr("Restore to a folder…")
            symbol: "arrow.down.to.folder"
            onTriggered: root.model.restore(menu.snapshotID)
        }
    }
}
