import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// One of the promises on the welcome screen.
ColumnLayout {
    id: root

    required property string icon
    required property string title
    required property string detail

    spacing: Appearance.tinyGap
    Accessible.role: Accessible.Grouping
    Accessible.name: title
    Accessible.description: detail

    Icon {
        name: root.icon
        side: Appearance.mediumIcon
        color: Appearance.accentOf(Appearance.theme).ink
        Layout.bottomMargin: Appearance.tinyGap
    }

    Words {
        Layout.fillWidth: true
        text: root.title
        font: Appearance.strong
        wrapMode: Text.Wrap
    }

    Words {
        Layout.fillWidth: true
        text: root.detail
        font: Appearance.caption
        color: Appearance.muted
        wrapMode: Text.Wrap
    }
}
