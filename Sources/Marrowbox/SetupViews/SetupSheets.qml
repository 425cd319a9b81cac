import QtQuick
import Marrowbox.Appearance
import Marrowbox.SetupViews

// Opens the sheets over the window that it stands in, one at a time each.
Item {
    id: root

    required property SetupScreens screens

    function show(component: Component, model: QtObject) {
        component.createObject(root, { model: model }).open();
    }

    Component.onCompleted: screens.appear()

    Connections {
        target: root.screens
        function onNewUnitOpened(model) {
            root.show(newUnit, model);
        }
        function onSettingsOpened(model) {
            root.show(settings, model);
        }
        function onUnitSettingsOpened(model) {
            root.show(unitSettings, model);
        }
    }

    Component {
        id: newUnit

        NewUnitView {
            id: newUnitSheet
            onClosed: root.end(newUnitSheet)
        }
    }

    Component {
        id: settings

        PreferencesView {
            id: settingsSheet
            onClosed: root.end(settingsSheet)
        }
    }

    Component {
        id: unitSettings

        UnitSettingsView {
            id: unitSettingsSheet
            onClosed: root.end(unitSettingsSheet)
        }
    }

    // The sheet goes first, so that nothing on it looks for a model that is gone.
    function end(sheet: QtObject) {
        const model = sheet.model;
        model.dismiss();
        sheet.destroy();
        screens.release(model);
    }
}
