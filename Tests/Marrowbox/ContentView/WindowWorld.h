#pragma once

#include "ScreenSupport/Screen.h"
#include "ScriptedState.h"
#include "StoreWorld.h"

#include "Marrowbox/ContentView/InstallContentView.h"
#include "Marrowbox/ContentView/MainWindowModel.h"

#include <memory>

namespace marrowbox::test {

/// The main window of a program with two backups, Papers and Photos, as a person uses it.
struct WindowWorld : StoreWorld {
    explicit WindowWorld(const std::function<void(AppConfiguration&)>& change = [](AppConfiguration&) {}) {
        AppConfiguration configuration = test::oneUnit(*this);
        configuration.units.push_back(test::dailyUnit(*this, "Photos"));
        change(configuration);
        write(configuration);
        start();
        time.advance(1);
        window = std::make_unique<MainWindowModel>(store);
    }

    void backUp() {
        store->run(unit(), 0);
        time.settle();
    }

    void show() {
        screen = std::make_unique<Screen>(
            QUrl(QStringLiteral("qrc:/Marrowbox/ContentView/MainView.qml")),
            QVariantMap{{QStringLiteral("model"), QVariant::fromValue(window.get())}},
            [](QQmlEngine&) { installContentView(); }, [this] { time.settle(); });
    }

    std::unique_ptr<MainWindowModel> window;
    std::unique_ptr<Screen> screen;
};

} // namespace marrowbox::test
