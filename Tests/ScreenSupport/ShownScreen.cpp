#include "ScreenSupport/ShownScreen.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

constexpr QSize leastSize(880, 640);

QStringList warnings;

void collect(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings.append(message);
}

/// One for all tests of a program, without a display.
void startApplication() {
    static int count = 1;
    static char name[] = "screen-tests";
    static char* values[] = {name, nullptr};
    if (QGuiApplication::instance())
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    // Left to the end of the process: what else is static may still belong to it.
    static auto* const application = new QGuiApplication(count, values);
    QAccessible::setActive(application != nullptr);
}

QQmlEngine& installed(QQmlEngine& engine, const ShownScreen::Install& install) {
    installAppearance(engine);
    install(engine);
    AppearanceState::of(engine)->setReducedMotion(true);
    return engine;
}

} // namespace

ShownScreen::ShownScreen(const QUrl& component, const QVariantMap& properties, const Install& install,
                         Turn turn)
    : WindowUser((startApplication(), std::move(turn))) {
    warnings.clear();
    qInstallMessageHandler(collect);
    installed(engine_, install);
    window_ = std::make_unique<QQuickWindow>();
    window_->resize(leastSize);
    sitDownAt(*window_);
    QQmlComponent loaded(&engine_, component);
    QObject* const root = loaded.beginCreate(engine_.rootContext());
    auto* const item = qobject_cast<QQuickItem*>(root);
    if (!item) {
        ADD_FAILURE() << loaded.errorString().toStdString();
        return;
    }
    loaded.setInitialProperties(root, properties);
    item->setParent(window_->contentItem());
    item->setParentItem(window_->contentItem());
    item->setSize(window_->size());
    window_->show();
    window_->requestActivate();
    loaded.completeCreate();
    settle();
}

ShownScreen::~ShownScreen() {
    window_.reset();
    qInstallMessageHandler(nullptr);
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(u'\n').toStdString();
}

} // namespace marrowbox::test
