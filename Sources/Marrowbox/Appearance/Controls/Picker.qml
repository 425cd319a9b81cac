import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Marrowbox.Appearance

// Chooses one of a few. `choices` is a list of { value, title, detail? }; `chosen` is the value that holds, and `picked` tells
// which one the user wants.
T.ComboBox {
    id: root

    required property string label
    required property var choices
    property var chosen: undefined
    /// Shown while none of the choices holds, and offered above them: its value is the empty text.
    property string emptyTitle: ""
    property string disabledReason: qsTr("Not available at the moment.")
    property string theme: Appearance.theme
    readonly property QtObject accent: Appearance.accentOf(theme)
    readonly property var offered: emptyTitle === "" ? choices : [{ value: "", title: emptyTitle }, ...choices]
    readonly property int chosenIndex: offered.findIndex(choice => choice.value === chosen)
    readonly property bool isEmpty: chosenIndex < 0 || offered[chosenIndex].value === ""

    signal picked(var value)

    model: offered
    textRole: "title"
    valueRole: "value"
    currentIndex: chosenIndex
    displayText: chosenIndex < 0 ? emptyTitle : offered[chosenIndex].title
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    font: Appearance.body
    leftPadding: Appearance.buttonSidePadding
    rightPadding: Appearance.smallGap
    implicitWidth: Appearance.fieldWidth
    implicitHeight: Appearance.controlHeight
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity

    onActivated: index => {
        const wanted = offered[index].value;
        currentIndex = Qt.binding(() => root.chosenIndex);
        if (wanted !== chosen)
            root.picked(wanted);
    }
    // Opened when the key comes up again, since an open list takes that for its answer.
    Keys.onReleased: event => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !popup.visible) {
            popup.open();
            event.accepted = true;
        }
    }

    Accessible.role: Accessible.ComboBox
    Accessible.name: label
    Accessible.description: enabled ? displayText : disabledReason
    Accessible.onPressAction: if (enabled)
        popup.open()

    background: MenuHoverSurface {
        accent: root.accent
        hovered: root.enabled && (root.hovered || root.visualFocus || root.popup.visible)
        focused: root.visualFocus
    }

    contentItem: RowLayout {
        spacing: Appearance.smallGap

        Text {
            Layout.fillWidth: true
            text: root.displayText
            textFormat: Text.PlainText
            font: root.font
            color: root.isEmpty ? Appearance.muted : Appearance.text
            elide: Text.ElideMiddle
        }

        Icon {
            name: "chevron.up.chevron.down"
            side: Appearance.smallIcon
            color: Appearance.muted
        }
    }

    delegate: ChoiceRow {
        required property var modelData
        required property int index

        width: ListView.view.width
        text: modelData.title
        detail: modelData.detail ?? ""
        chosen: index === root.chosenIndex
        highlighted: index === root.highlightedIndex
    }

    popup: T.Popup {
        y: root.height + Appearance.tinyGap
        width: root.width
        padding: Appearance.tinyGap
        margins: Appearance.smallGap
        height: Math.min(list.contentHeight + topPadding + bottomPadding, Appearance.mostMenuHeight)
        background: PopupSurface {}
        // A click gives the focus to nothing, but an open list is used with the keys.
        onAboutToShow: root.forceActiveFocus(Qt.PopupFocusReason)
        contentItem: ListView {
            id: list
            clip: true
            model: root.delegateModel
            currentIndex: root.highlightedIndex
            highlightMoveDuration: 0
            T.ScrollBar.vertical: ThinScrollBar {}
        }
    }
}
