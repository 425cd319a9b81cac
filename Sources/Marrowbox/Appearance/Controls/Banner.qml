import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

// Something that needs attention, above the page: a title, a text and a button that helps.
Rectangle {
    id: root

    required property string text
    property string title: ""
    property string symbol: "exclamationmark.triangle.fill"
    property int tone: Tone.Warning
    property string action: ""
    property bool actionEnabled: true
    property string actionDisabledReason: ""
    property string spokenName: title !== "" ? title + " " + text : text
    readonly property color ink: Appearance.toneColor(tone)

    signal acted

    implicitWidth: row.implicitWidth + Appearance.mediumGap * 2
    implicitHeight: row.implicitHeight + Appearance.gap * 2
    radius: Appearance.cardRadius
    color: Appearance.faded(ink, Appearance.tileHoverFill)
    border.width: Appearance.hairline
    border.color: Appearance.faded(ink, Appearance.restBorder)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: spokenName

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Appearance.mediumGap
        anchors.rightMargin: Appearance.mediumGap
        spacing: Appearance.gap

        Icon {
            name: root.symbol
            side: Appearance.mediumIcon
            color: root.ink
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Appearance.hairGap

            Words {
                Layout.fillWidth: true
                visible: text !== ""
                text: root.title
                font: Appearance.strong
                wrapMode: Text.Wrap
                lineHeight: 1
                Accessible.ignored: true
            }

            Words {
                Layout.fillWidth: true
                text: root.text
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }

        ActionButton {
            visible: root.action !== ""
            text: root.action
            enabled: root.actionEnabled
            disabledReason: root.actionDisabledReason
            onClicked: root.acted()
        }
    }
}
