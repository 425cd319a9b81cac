import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Signs a Google account in; while the browser is awaited it says so, with a way out beside it. The keyboard stays with whichever
// of the two can be pressed.
RowLayout {
    id: root

    required property AccountConnection connection
    property alias text: main.text
    property alias emphasis: main.emphasis

    signal wanted

    function begin() {
        const reason = main.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
        const hadFocus = main.activeFocus;
        wanted();
        if (hadFocus && connection.isWaiting)
            cancel.forceActiveFocus(reason);
    }

    spacing: Appearance.smallGap

    ActionButton {
        id: main
        text: root.connection.title
        emphasis: ActionButton.Primary
        enabled: !root.connection.isWaiting
        disabledReason: root.connection.waitingReason
        onClicked: root.begin()
    }

    ActionButton {
        id: cancel
        text: qsTr("Cancel")
        spokenName: qsTr("Cancel sign-in")
        emphasis: ActionButton.Quiet
        visible: root.connection.isWaiting
        successor: main
        onClicked: root.connection.cancel()
    }
}
