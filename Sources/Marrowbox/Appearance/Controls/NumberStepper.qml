import QtQuick
import QtQuick.Templates as T
import Marrowbox.Appearance

// A number with two steps, for hours and minutes. Bind `number`; `picked` tells what the user wants.
T.SpinBox {
    id: root

    required property string label
    property int number: 0
    property int digits: 2
    property string disabledReason: qsTr("Not available at the moment.")
    readonly property QtObject accent: Appearance.accentOf(Appearance.theme)

    /// What stands in the field was typed, and is shown as it was.
    property bool isTyping: false

    signal picked(int number)

    function padded(number: int): string {
        return String(number).padStart(digits, "0");
    }

    value: number
    editable: true
    hoverEnabled: true
    wrap: true
    font: Appearance.body
    leftPadding: Appearance.smallGap
    rightPadding: Appearance.mediumGap + Appearance.smallGap
    implicitWidth: Appearance.stepperWidth
    implicitHeight: Appearance.controlHeight
    opacity: enabled ? Appearance.opaque : Appearance.disabledOpacity
    textFromValue: isTyping ? (value => valueFromText(field.text) === value ? field.text : padded(value)) : (value => padded(value))
    valueFromText: text => Number.parseInt(text, 10) || 0
    onActiveFocusChanged: if (!activeFocus)
        isTyping = false
    // Also what assistive technology sets comes this way.
    onValueChanged: if (value !== number)
        picked(value)

    Accessible.role: Accessible.SpinBox
    Accessible.name: label
    Accessible.description: enabled ? padded(value) : disabledReason
    Accessible.onIncreaseAction: if (enabled)
        increase()
    Accessible.onDecreaseAction: if (enabled)
        decrease()

    validator: IntValidator {
        bottom: Math.min(root.from, root.to)
        top: Math.max(root.from, root.to)
    }

    contentItem: TextInput {
        id: field

        text: root.displayText
        font: root.font
        color: Appearance.text
        selectionColor: root.accent.color
        selectedTextColor: root.accent.onColor
        selectByMouse: true
        horizontalAlignment: Qt.AlignHCenter
        verticalAlignment: Qt.AlignVCenter
        validator: root.validator
        inputMethodHints: Qt.ImhDigitsOnly
        // Taken with every key, since a button that is clicked next does not take the focus from the field.
        onTextEdited: {
            root.isTyping = true;
            const typed = root.valueFromText(text);
            if (acceptableInput && typed !== root.number)
                root.picked(typed);
        }
    }

    up.indicator: StepMark {
        x: root.width - width - Appearance.tinyGap
        y: Appearance.hairGap
        height: root.height / 2 - Appearance.hairGap
        upwards: true
        active: root.enabled && root.up.hovered
    }

    down.indicator: StepMark {
        x: root.width - width - Appearance.tinyGap
        y: root.height / 2
        height: root.height / 2 - Appearance.hairGap
        upwards: false
        active: root.enabled && root.down.hovered
    }

    background: Rectangle {
        radius: Appearance.smallRadius
        color: Appearance.field
        border.width: root.activeFocus ? Appearance.focusWidth : Appearance.hairline
        border.color: root.activeFocus ? root.accent.tint : root.hovered ? Appearance.muted : Appearance.fieldBorder
    }
}
