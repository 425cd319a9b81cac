import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marrowbox.Appearance
import Marrowbox.ContentView

// One run: when, how it ended, what it had to say, and its mail.
T.ItemDelegate { // whose own role is that of a line in a list
    id: root

    required property int index
    required property string dateText
    required property string outcome
    required property string outcomeTone
    required text
    required property string emailText
    required property string emailIcon
    required property string emailTone
    required property string catchUp
    required property string spokenName
    property bool isLast
    readonly property int tone: {
        switch (outcomeTone) {
        case "good":
            return Tone.Good;
        case "bad":
            return Tone.Alert;
        case "running":
            return Tone.Accent;
        }
        return Tone.Neutral;
    }

    focusPolicy: Qt.NoFocus
    leftPadding: Appearance.gap
    rightPadding: Appearance.gap
    topPadding: Appearance.gap
    bottomPadding: Appearance.gap
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.focusable: true

    background: Item {
        FocusRing {
            anchors.margins: 0
            shown: root.visualFocus
            cornerRadius: Appearance.smallRadius
        }

        Separator {
            width: parent.width
            anchors.bottom: parent.bottom
            visible: !root.isLast
        }
    }

    contentItem: ColumnLayout {
        spacing: Appearance.tinyGap

        RowLayout {
            Layout.fillWidth: true
            spacing: Appearance.smallGap

            Words {
                Layout.fillWidth: true
                text: root.dateText
                font: Appearance.strong
            }

            Badge {
                text: root.outcome
                tone: root.tone
            }
        }

        Words {
            Layout.fillWidth: true
            visible: text !== ""
            text: root.text
            color: Appearance.muted
            wrapMode: Text.Wrap
        }

        StatusLine {
            Layout.fillWidth: true
            visible: text !== ""
            text: root.catchUp
            symbol: "clock.arrow.trianglehead.counterclockwise.rotate.90"
            font: Appearance.caption
            wrapped: true
        }

        EmailStatusLine {
            Layout.fillWidth: true
            text: root.emailText
            icon: root.emailIcon
            tone: root.emailTone
        }
    }
}
