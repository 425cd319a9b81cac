import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.ContentView

// What happens now, what happened last, and what comes next.
ColumnLayout {
    id: root

    required property UnitPageModel model
    readonly property var page: model.page

    spacing: Appearance.smallGap

    ProgressLine {
        Layout.fillWidth: true
        visible: root.page.isBusy
        label: root.model.progress
        done: root.model.progressDone
        total: root.model.progressTotal
    }

    Words {
        Layout.fillWidth: true
        visible: root.page.isBusy
        text: root.model.progress
        color: Appearance.muted
    }

    Words {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.page.lastResult
        color: root.page.lastResultIsGood ? Appearance.secondary : Appearance.warning
        wrapMode: Text.Wrap
    }

    StatusLine {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.page.destinationIssue
        symbol: "exclamationmark.circle"
        tone: Tone.Warning
        wrapped: true
    }

    StatusLine {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.page.nextText
        symbol: "arrow.triangle.2.circlepath"
        wrapped: true
    }
}
