import QtQuick

// The place of a sheet, which is made when it is shown and gone when it is closed.
Loader {
    id: root

    required property bool shown
    required property Component sheet

    signal closed

    active: shown
    sourceComponent: sheet
    onLoaded: item.open()

    Connections {
        target: root.item

        function onClosed() {
            root.closed();
        }
    }
}
