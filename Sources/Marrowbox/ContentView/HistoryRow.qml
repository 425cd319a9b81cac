import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance
import Marrowbox.ContentView

// One snapshot of a history. What is seen of it is made in the time between frames, since a history that arrives brings as many
// rows at once as fit in the window, and all of them together take longer than a frame.
T.ItemDelegate { // whose own role is that of a line in a list
    id: root

    required property int index
    required property string snapshotID
    required property string dateText
    required property string summary
    required property string emailShortText
    required property string emailText
    required property string emailIcon
    required property string emailTone
    required property string dataSize
    required property string fullSize
    required property bool isMounted
    required property string spokenName
    property HistoryModel history
    property bool isExploring
    property bool isLast
    readonly property int buttonFocus: ListView.isCurrentItem ? Qt.TabFocus : Qt.NoFocus
    readonly property IconButton menuButton: (content.item as HistoryRowContent)?.menuButton ?? null

    /// The menu of this row is wanted below the button.
    signal menuWanted(Item button)

    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    Keys.onReturnPressed: menuButton?.press()
    Keys.onEnterPressed: menuButton?.press()
    Keys.onSpacePressed: menuButton?.press()
    Keys.onMenuPressed: menuButton?.press()

    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.focusable: true
    Accessible.onPressAction: menuButton?.press()

    contentItem: Loader {
        id: content

        asynchronous: true
        sourceComponent: HistoryRowContent {
            row: root
        }
    }
}
