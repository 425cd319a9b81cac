import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// A raised area on a page. Its children stand below one another.
Rectangle {
    id: root

    default property alias content: column.data
    property alias spacing: column.spacing
    property int padding: Appearance.mediumGap

    implicitWidth: column.implicitWidth + padding * 2
    implicitHeight: column.implicitHeight + padding * 2
    radius: Appearance.cardRadius
    color: Appearance.card
    border.width: Appearance.hairline
    border.color: Appearance.border

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: root.padding
        spacing: Appearance.smallGap
    }
}
