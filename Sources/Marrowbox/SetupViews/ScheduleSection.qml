import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance
import Marrowbox.SetupViews

// When a backup runs.
Section {
    id: root

    required property UnitSettingsModel model

    title: qsTr("Schedule")
    note: model.scheduleNote

    FormRow {
        label: qsTr("Frequency")

        Picker {
            label: qsTr("Frequency")
            choices: root.model.frequencies
            chosen: root.model.frequency
            onPicked: value => root.model.frequency = value
        }
    }

    FormRow {
        visible: root.model.asksForWeekday
        label: qsTr("Weekday")

        Picker {
            label: qsTr("Weekday")
            choices: root.model.weekdays
            chosen: root.model.weekday
            onPicked: value => root.model.weekday = value
        }
    }

    FormRow {
        visible: root.model.asksForMinute
        label: root.model.asksForHour ? qsTr("Time") : qsTr("Minute")

        NumberStepper {
            visible: root.model.asksForHour
            label: qsTr("Hour")
            from: 0
            to: 23
            number: root.model.hour
            onPicked: number => root.model.hour = number
        }

        Words {
            visible: root.model.asksForHour
            text: qsTr(":")
        }

        NumberStepper {
            label: qsTr("Minute")
            from: 0
            to: 59
            number: root.model.minute
            onPicked: number => root.model.minute = number
        }
    }
}
