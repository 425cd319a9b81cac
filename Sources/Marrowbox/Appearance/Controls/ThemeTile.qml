import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// One theme in the picker of colours. Bind `chosen`; `clicked` asks for it.
PressButton {
    id: root

    required property bool chosen

    text: accent.title
    spokenName: qsTr("%1 accent").arg(accent.title)
    implicitHeight: Appearance.tileHeight
    leftPadding: Appearance.gap
    rightPadding: Appearance.gap
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.description: enabled ? qsTr("Use %1 for this backup").arg(accent.title) : disabledReason

    background: Rectangle {
        radius: Appearance.tileRadius
        color: Appearance.faded(root.accent.tint, root.chosen ? Appearance.activeFill
                                                              : root.active ? Appearance.tileHoverFill : Appearance.tileFill)
        border.width: Appearance.hairline
        border.color: Appearance.faded(root.accent.tint, root.chosen ? Appearance.tileSelectedBorder
                                                                     : root.active ? Appearance.tileHoverBorder : Appearance.tileBorder)

        FocusRing {
            shown: root.visualFocus
            cornerRadius: Appearance.tileRadius
            tint: root.accent.tint
        }
    }

    contentItem: RowLayout {
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
            font: root.font
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
