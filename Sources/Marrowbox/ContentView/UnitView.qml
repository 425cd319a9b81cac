import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Marrowbox.Appearance
import Marrowbox.ContentView

// The page of a backup. Its history may be of any length, so the page scrolls as a whole while only those rows exist that are
// in sight or near: the list of rows is as high as what is seen of it, at least a row, and moves through the page with the view.
ScrollPane {
    id: root

    required property UnitPageModel model
    readonly property int contentMargin: Math.max(Appearance.pageMargin, (width - Appearance.pageWidth) / 2)
    readonly property real rowsTop: head.height
    readonly property real rowsHeight: model.history.count * history.rowHeight

    contentHeight: rowsTop + rowsHeight + foot.height

    function showRow(row: int) {
        const top = rowsTop + row * history.rowHeight;
        if (top < contentY)
            contentY = top;
        else if (top + history.rowHeight > contentY + height)
            contentY = top + history.rowHeight - height;
    }

    Connections {
        target: root.model

        function onUnitChanged() {
            root.contentY = 0;
        }
    }

    UnitHead {
        id: head

        x: root.contentMargin
        width: root.width - x * 2
        model: root.model
    }

    HistoryList {
        id: history

        readonly property real from: Math.max(0, Math.min(root.rowsHeight - rowHeight, root.contentY - root.rowsTop))
        readonly property real to: Math.max(from + rowHeight, Math.min(root.rowsHeight, root.contentY + root.height - root.rowsTop))

        x: root.contentMargin
        y: root.rowsTop + from
        width: root.width - x * 2
        height: to - from
        visible: count > 0
        model: root.model.history
        isExploring: root.model.page.isExploring
        place: from
        onCurrentIndexChanged: if (activeFocus)
            root.showRow(currentIndex)
    }

    UnitFoot {
        id: foot

        x: root.contentMargin
        y: root.rowsTop + root.rowsHeight
        width: root.width - x * 2
        model: root.model
    }

    Question {
        title: root.model.page.removeQuestion
        message: qsTr("This removes the backup and its schedule from Marrowbox. Files it has already saved stay on the destination, and nothing is changed in Google Drive.")
        yesText: qsTr("Remove backup")
        destructive: true
        visible: root.model.confirmsRemove
        onAnsweredYes: root.model.remove()
        onAnsweredNo: root.model.confirmsRemove = false
    }
}
