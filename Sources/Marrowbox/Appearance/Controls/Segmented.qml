import QtQuick
import Marrowbox.Appearance

// A few choices side by side, of which one holds; also the tabs of a sheet. `titles` are their texts; the arrow keys move.
Rectangle {
    id: root

    enum Kind { Choices, Tabs }

    required property string label
    required property var titles
    property int kind: Segmented.Choices
    property int current: 0
    property string disabledReason: qsTr("Not available at the moment.")
    property string theme: Appearance.theme

    signal picked(int index)

    function step(by: int) {
        const next = Math.max(0, Math.min(titles.length - 1, current + by));
        if (next === current)
            return;
        picked(next);
        segments.itemAt(current).forceActiveFocus(Qt.TabFocusReason);
    }

    implicitWidth: row.implicitWidth + Appearance.hairGap * 2
    implicitHeight: row.implicitHeight + Appearance.hairGap * 2
    radius: Appearance.buttonRadius
    color: Appearance.faded(Appearance.text, Appearance.secondaryFill)
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    Accessible.role: kind === Segmented.Tabs ? Accessible.PageTabList : Accessible.Grouping
    Accessible.name: label
    Accessible.description: enabled ? "" : disabledReason

    Row {
        id: row
        anchors.centerIn: parent

        Repeater {
            id: segments
            model: root.titles

            Segment {
                required property string modelData
                required property int index

                text: modelData
                theme: root.theme
                chosen: index === root.current
                spokenRole: root.kind === Segmented.Tabs ? Accessible.PageTab : Accessible.RadioButton
                disabledReason: root.disabledReason
                onClicked: if (!chosen)
                    root.picked(index)
                Keys.onLeftPressed: root.step(-1)
                Keys.onRightPressed: root.step(1)
            }
        }
    }
}
