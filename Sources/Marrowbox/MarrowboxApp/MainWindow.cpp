#include "Marrowbox/MarrowboxApp/MainWindow.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"
#include "Marrowbox/Appearance/SymbolProvider.h"
#include "Marrowbox/ContentView/InstallContentView.h"
#include "Marrowbox/ContentView/MainWindowModel.h"
#include "Marrowbox/SetupViews/InstallSetupViews.h"
#include "Marrowbox/SetupViews/SetupScreens.h"

#include <QQuickWindow>
#include <stdexcept>

// Written by the build; naming it keeps the linker from dropping the module out of the static library.
extern void qml_register_types_Marrowbox_MarrowboxApp();

namespace marrowbox {

namespace {

/// Panels are dark on one desktop and light on the next; this stands out from both.
const QColor trayColour = QColor::fromRgbF(0.55F, 0.61F, 0.70F);

} // namespace

struct MainWindow::Models {
    explicit Models(const std::shared_ptr<AppStore>& store) : window(store), screens(store) {}

    MainWindowModel window;
    SetupScreens screens;
};

MainWindow::MainWindow(std::shared_ptr<AppStore> store, Quitting& quitting, const QUrl& screens)
    : models_(std::make_unique<Models>(store)), engine_(std::make_unique<QQmlApplicationEngine>()) {
    qml_register_types_Marrowbox_MarrowboxApp();
    installAppearance(*engine_);
    installContentView();
    installSetupViews();
    engine_->setInitialProperties({{"model", QVariant::fromValue(&models_->window)},
                                   {"screens", QVariant::fromValue(&models_->screens)},
                                   {"quitting", QVariant::fromValue(&quitting)}});
    engine_->setIncubationController(&spareTime_); // before a window sets its own
    engine_->load(screens);
    if (engine_->rootObjects().isEmpty())
        throw std::runtime_error("The window could not be made.");
    window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().front());
    window_->installEventFilter(this);
}

MainWindow::~MainWindow() = default;

void MainWindow::show(const QString& activationToken) {
    if (!activationToken.isEmpty()) // where a desktop asks for one before it lets a window come forward
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    // Not by QWindow::show(), which would give a window that fills the desktop its small size again.
    window_->setWindowStates(window_->windowStates() & ~Qt::WindowStates(Qt::WindowMinimized));
    window_->setVisible(true);
    window_->raise();
    window_->requestActivate();
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void MainWindow::follow(const AppearancePreferences& preferences) {
    AppearanceState* const appearance = AppearanceState::of(*engine_);
    appearance->setDark(preferences.colorScheme == ColorScheme::dark);
    appearance->setReducedMotion(preferences.reducesMotion);
}

void MainWindow::keepReachable(std::function<bool()> isReachableElsewhere) {
    isReachableElsewhere_ = std::move(isReachableElsewhere);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    const bool isLastWayIn =
        event->type() == QEvent::Close && isReachableElsewhere_ && !isReachableElsewhere_();
    if (!isLastWayIn)
        return QObject::eventFilter(watched, event);
    event->ignore();
    window_->setWindowStates(window_->windowStates() | Qt::WindowMinimized);
    return true;
}

QIcon MainWindow::trayIcon(const QString& symbol) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64})
        icon.addPixmap(QPixmap::fromImage(drawSymbol(symbol, trayColour, QSize(side, side))));
    return icon;
}

} // namespace marrowbox
