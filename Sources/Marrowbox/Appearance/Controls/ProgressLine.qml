import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// How far something has come. `total` 0 means that nobody knows yet: then a light runs along the line, unless motion is reduced.
T.ProgressBar {
    id: root

    required property string label
    property real done: 0
    property real total: 0
    property string theme: Appearance.theme
    readonly property QtObject accent: Appearance.accentOf(theme)
    readonly property int percent: total > 0 ? Math.floor(Math.min(1, done / total) * 100) : 0

    from: 0
    to: Math.max(total, 1)
    value: done
    indeterminate: total <= 0
    implicitWidth: Appearance.fieldWidth
    implicitHeight: Appearance.progressHeight

    // A progress bar has no value for assistive technology, so its description carries it.
    Accessible.role: Accessible.ProgressBar
    Accessible.name: label
    Accessible.description: indeterminate ? qsTr("Under way") : qsTr("%1 percent").arg(percent)

    background: Rectangle {
        radius: height / 2
        color: Appearance.faded(root.accent.tint, Appearance.activeFill)
    }

    contentItem: Item {
        id: track
        clip: true

        Rectangle {
            id: bar
            property real place: 0

            visible: !root.indeterminate || !Appearance.reducedMotion
            height: parent.height
            radius: height / 2
            color: root.accent.tint
            width: root.indeterminate ? track.width * Appearance.sweepPart : Math.max(height, track.width * root.position)
            x: root.indeterminate ? place * (track.width + width) - width : 0

            Behavior on width {
                enabled: !root.indeterminate
                NumberAnimation {
                    duration: Appearance.calm
                    easing.type: Easing.OutQuad
                }
            }
        }

        Rectangle {
            anchors.fill: parent
            radius: height / 2
            visible: root.indeterminate && Appearance.reducedMotion
            color: Appearance.faded(root.accent.tint, Appearance.tileHoverBorder)
        }
    }

    NumberAnimation {
        target: bar
        property: "place"
        from: 0
        to: 1
        duration: Appearance.sweep
        loops: Animation.Infinite
        easing.type: Easing.InOutSine
        running: root.indeterminate && root.visible && !Appearance.reducedMotion
    }
}
