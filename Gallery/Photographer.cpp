#include "Gallery/Photographer.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"

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
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings.append(message);
}

/// Listens to all warnings while it lives.
class WarningsHeard {
  public:
    WarningsHeard() : previous_(qInstallMessageHandler(collect)) { warnings.clear(); }
    ~WarningsHeard() { qInstallMessageHandler(previous_); }
    WarningsHeard(const WarningsHeard&) = delete;
    WarningsHeard& operator=(const WarningsHeard&) = delete;

    void mustBeNone(const QString& scene) const {
        if (!warnings.isEmpty())
            throw std::runtime_error(qPrintable(scene + QStringLiteral(": ") + warnings.join(u'\n')));
    }

  private:
    QtMessageHandler previous_;
};

std::unique_ptr<QQuickWindow> windowFor(std::unique_ptr<QObject> root, const Scene& scene,
                                        const AppearanceState& look) {
    if (auto* const window = qobject_cast<QQuickWindow*>(root.get())) {
        root.release();
        return std::unique_ptr<QQuickWindow>(window);
    }
    auto window = std::make_unique<QQuickWindow>();
    window->setColor(look.colors().window);
    auto* const item = qobject_cast<QQuickItem*>(root.get());
    if (!item)
        throw std::runtime_error(qPrintable(scene.name + QStringLiteral(": neither an item nor a window")));
    item->setParent(window.get());
    root.release();
    item->setParentItem(window->contentItem());
    item->setSize(scene.size);
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
    AppearanceState& look = *AppearanceState::of(engine);
    look.setDark(light == Light::dark);
    look.setReducedMotion(true);

    QObject stateOwner;
    QQmlComponent component(&engine, QUrl(scene.component));
    std::unique_ptr<QObject> root(component.createWithInitialProperties(scene.state(&stateOwner)));
    if (!root)
        throw std::runtime_error(qPrintable(scene.name + QStringLiteral(": ") + component.errorString()));
    const auto window = windowFor(std::move(root), scene, look);
    window->resize(scene.size);
    window->show();
    QImage picture = settledPicture(*window);
    heard.mustBeNone(scene.name);
    if (isBlank(picture))
        throw std::runtime_error(qPrintable(scene.name + QStringLiteral(": nothing is drawn")));
    return picture;
}

} // namespace marrowbox::gallery
