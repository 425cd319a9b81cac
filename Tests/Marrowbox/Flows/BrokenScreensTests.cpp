#include "Computer.h"

#include "Marrowbox/MarrowboxApp/MarrowboxApp.h"

#include <QApplication>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

/// Starts a program whose screens cannot be loaded, and ends the process as the program does.
[[noreturn]] void startWithBrokenScreens() {
    int status = 0;
    {
        test::Computer computer;
        const fs::path screens = computer.folder("Broken") / "Main.qml";
        std::ofstream(screens) << "import Marrowbox.Nothing\n";
        int count = 1;
        char name[] = "marrowbox";
        char* words[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(count, words);
        try {
            const MarrowboxApp app({.sessionBus = computer.sessionBus.connect(),
                                    .systemBus = computer.systemBus.connect(),
                                    .process = computer.session(),
                                    .screens = QUrl::fromLocalFile(QString::fromStdString(screens))});
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s\n", failure.what());
            status = 1;
        }
    }
    std::exit(status);
}

} // namespace

// The store is up by then, with work on its way to a main thread that never turns its event loop.
TEST(BrokenScreensDeathTest, endTheProgramWithAMessage) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(startWithBrokenScreens(), testing::ExitedWithCode(1), "The window could not be made.");
}

} // namespace marrowbox
