#include "Desktopless.h"

#include "Marrowbox/MarrowboxApp/ProgramSurroundings.h"

#include <QApplication>
#include <QCloseEvent>
#include <QTimer>
#include <QWindow>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

constexpr int given = 0;
constexpr int refused = 1;

/// As the main window is while nothing else leads to the program.
class WindowThatStays : public QWindow {
  protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::Close)
            return QWindow::event(event);
        event->ignore();
        return true;
    }
};

} // namespace

TEST(EndOfTheProgram, isNotRefusedByAWindowThatStaysWhenItIsClosed) {
    test::startDesktoplessApplication();
    WindowThatStays window;
    window.show();
    QTimer::singleShot(0, [] { endEventLoop(); });
    QTimer::singleShot(std::chrono::seconds(5), qApp, [] { QCoreApplication::exit(refused); });
    EXPECT_EQ(QCoreApplication::exec(), given);
}

} // namespace marrowbox
