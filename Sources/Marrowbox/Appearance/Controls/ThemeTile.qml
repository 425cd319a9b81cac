import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// One theme in the picker of colours. Bind `chosen`; `clicked` asks for it.
PressItem {
    id: root

    readonly property real fillOpacity: chosen ? Appearance.activeFill : active ? Appearance.tileHoverFill : Appearance.tileFill
    readonly property real borderOpacity: {
        if (chosen)
            return Appearance.tileSelectedBorder;
        return active ? Appearance.tileHoverBorder : Appearance.tileBorder;
    }

    text: accent.title
    spokenName: qsTr("%1 accent").arg(accent.title)
    help: qsTr("Use %1 for this backup").arg(accent.title)
    implicitWidth: row.implicitWidth + Appearance.gap * 2
    implicitHeight: Appearance.tileHeight

    Rectangle {
        anchors.fill: parent
        radius: Appearance.tileRadius
        color: Appearance.faded(root.accent.tint, root.fillOpacity)
        border.width: Appearance.hairline
        border.color: Appearance.faded(root.accent.tint, root.borderOpacity)

        FocusRing {
            shown: root.activeFocus
            cornerRadius: Appearance.tileRadius
            tint: root.accent.tint
        }
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Appearance.gap
        anchors.rightMargin: Appearance.gap
        spacing: Appearance.smallGap

        Rectangle {
            implicitWidth: Appearance.swatch
            implicitHeight: Appearance.swatch
            radius: Appearance.smallRadius
            color: root.accent.color
        }

        Text {
            Layout.fillWidth: true
            text: root.text
            textFormat: Text.PlainText
            font: Appearance.button
            color: Appearance.text
            elide: Text.ElideRight
        }

        Icon {
            name: root.chosen ? "checkmark" : ""
            side: Appearance.smallIcon
            color: root.accent.ink
        }
    }
}
