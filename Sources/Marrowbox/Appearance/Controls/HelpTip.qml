import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A tool tip, made only once it is wanted.
Loader {
    id: root

    required property string text
    required property bool shown

    active: shown && text !== ""
    anchors.centerIn: parent
    sourceComponent: T.ToolTip {
        id: tip

        visible: true
        delay: Appearance.toolTipDelay
        timeout: Appearance.toolTipTime
        text: root.text
        x: (root.parent.width - width) / 2 - root.x
        y: root.parent.height / 2 + Appearance.smallGap
        margins: Appearance.smallGap
        topPadding: Appearance.tinyGap
        bottomPadding: Appearance.tinyGap
        leftPadding: Appearance.smallGap
        rightPadding: Appearance.smallGap
        implicitWidth: Math.min(words.implicitWidth + leftPadding + rightPadding, Appearance.mostToolTipWidth)
        implicitHeight: words.implicitHeight + topPadding + bottomPadding
        contentItem: Text {
            id: words
            text: tip.text
            textFormat: Text.PlainText
            font: Appearance.caption
            color: Appearance.inverseLabel
            wrapMode: Text.Wrap
        }
        background: Rectangle {
            radius: Appearance.smallRadius
            color: Appearance.inverse
        }
    }
}
