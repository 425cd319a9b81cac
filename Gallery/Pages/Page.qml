import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A page of controls: a title and rows below it.
Item {
    id: root

    required property string title
    default property alias content: column.data

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: Appearance.pageMargin
        spacing: Appearance.largeGap

        Words {
            text: root.title
            font: Appearance.title
        }
    }
}
