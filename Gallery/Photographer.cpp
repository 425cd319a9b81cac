#include "Gallery/Photographer.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"
#include "Marrowbox/ContentView/InstallContentView.h"
#include "Marrowbox/SetupViews/InstallSetupViews.h"
#include "ScreenSupport/Fit.h"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <stdexcept>

namespace marrowbox::gallery {

namespace {

constexpr int roundsUntilStill = 4;

QStringList warnings;

void collect(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && !warnings.contains(message))
        warnings.append(message);
}

/// Listens to all warnings while it lives.
class WarningsHeard {
  public:
    WarningsHeard() : previous_(qInstallMessageHandler(collect)) { warnings.clear(); }
    ~WarningsHeard() { qInstallMessageHandler(previous_); }
    WarningsHeard(const WarningsHeard&) = delete;
    WarningsHeard& operator=(const WarningsHeard&) = delete;

    QString text() const { return warnings.join(u'\n'); }

  private:
    QtMessageHandler previous_;
};

std::runtime_error refusal(const Scene& scene, const QString& why) {
    return std::runtime_error(qPrintable(scene.name + QStringLiteral(": ") + why));
}

/// A root that is a window is the window; an item gets one, before it is complete, so that it may open
/// popups.
std::unique_ptr<QQuickWindow> windowFor(QObject* root, const Scene& scene, const AppearanceState& look) {
    if (auto* const own = qobject_cast<QQuickWindow*>(root))
        return std::unique_ptr<QQuickWindow>(own);
    auto window = std::make_unique<QQuickWindow>();
    window->setColor(look.colors().window);
    root->setParent(window.get());
    auto* const item = qobject_cast<QQuickItem*>(root);
    if (!item)
        throw refusal(scene, QStringLiteral("neither an item nor a window"));
    item->setParentItem(window->contentItem());
    item->setSize(scene.size);
    return window;
}

std::unique_ptr<QQuickWindow> build(const Scene& scene, QQmlEngine& engine, QObject& stateOwner) {
    QQmlComponent component(&engine, QUrl(scene.component));
    QObject* const root = component.beginCreate(engine.rootContext());
    if (!root)
        throw refusal(scene, component.errorString());
    component.setInitialProperties(root, scene.state(&stateOwner));
    std::unique_ptr<QQuickWindow> window = windowFor(root, scene, *AppearanceState::of(engine));
    component.completeCreate();
    if (component.isError())
        throw refusal(scene, component.errorString());
    return window;
}

QImage settledPicture(QQuickWindow& window) {
    QImage picture;
    for (int round = 0; round < roundsUntilStill; ++round) {
        QCoreApplication::processEvents();
        picture = window.grabWindow();
    }
    return picture;
}

bool isBlank(const QImage& picture) {
    const QRgb first = picture.pixel(0, 0);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) != first)
                return false;
    return true;
}

} // namespace

QImage photograph(const Scene& scene, Light light) {
    const WarningsHeard heard;
    QQmlEngine engine;
    installAppearance(engine);
    installContentView();
    installSetupViews();
    AppearanceState& look = *AppearanceState::of(engine);
    look.setDark(light == Light::dark);
    look.setReducedMotion(true);

    QObject stateOwner;
    const auto window = build(scene, engine, stateOwner);
    window->resize(scene.size);
    window->show();
    QImage picture = settledPicture(*window);
    if (!heard.text().isEmpty())
        throw refusal(scene, heard.text());
    if (const QStringList all = test::misfits(*window); !all.isEmpty())
        throw refusal(scene, all.join(u'\n'));
    if (isBlank(picture))
        throw refusal(scene, QStringLiteral("nothing is drawn"));
    return picture;
}

} // namespace marrowbox::gallery
