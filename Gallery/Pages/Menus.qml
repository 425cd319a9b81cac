import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    id: root

    title: "Menus"

    Picker {
        id: picker
        label: "Keep history"
        choices: [{ value: 0, title: "Forever" }, { value: 30, title: "30 days" }, { value: 90, title: "90 days", detail: "limited" }]
        chosen: 30
        Component.onCompleted: popup.open()
    }

    ActionMenu {
        visible: true
        x: root.width / 2
        y: Appearance.pageMargin * 3
        ActionMenuItem { text: "Mount read-only in Finder"; symbol: "externaldrive"; highlighted: true }
        ActionMenuItem { text: "Restore to a folder…"; symbol: "arrow.down.to.folder" }
        MenuLine {}
        ActionMenuItem { text: "Enable Gmail sending…"; symbol: "envelope"; enabled: false }
        ActionMenuItem { text: "Disconnect"; symbol: "xmark"; destructive: true }
    }

    Item { Layout.fillHeight: true }
}
