import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What a snapshot added to the disk, and how large it is as a whole.
ColumnLayout {
    id: root

    required property string dataSize
    required property string fullSize

    spacing: Appearance.tinyGap

    HoverHandler {
        id: hover
    }

    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignRight
        text: root.dataSize
        font: Appearance.caption

        HelpTip {
            text: qsTr("Incremental data counts content first referenced in retained history. The oldest retained snapshot is the baseline; full snapshot size includes reused files.")
            shown: hover.hovered
        }
    }

    Words {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignRight
        text: root.fullSize
        font: Appearance.small
        color: Appearance.muted
    }
}
