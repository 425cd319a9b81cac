#include "ScreenSupport/Screen.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QTest>
#include <gtest/gtest.h>
#include <stdexcept>

namespace marrowbox::test {

namespace {

constexpr QSize leastSize(880, 640);

const QString imports =
    QStringLiteral("import QtQuick\nimport QtQuick.Layouts\nimport Marrowbox.Appearance\n");

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        ADD_FAILURE() << message.toStdString();
}

/// The first text that can be seen in an item that is in a tool tip, or else in a tool tip below it.
QString textBelow(const QQuickItem& item, bool isInTip) {
    if (!item.isVisible())
        return {};
    if (isInTip && item.inherits("QQuickText"))
        return item.property("text").toString();
    for (const QQuickItem* const child : item.childItems()) {
        const QString text =
            textBelow(*child, isInTip || (child->parent() && child->parent()->inherits("QQuickToolTip")));
        if (!text.isEmpty())
            return text;
    }
    return {};
}

/// One for all tests of a process, without a display.
QGuiApplication& offscreenApplication() {
    static int count = 1;
    static char name[] = "screen-tests";
    static char* values[] = {name, nullptr};
    static const bool isPrepared =
        qputenv("QT_QPA_PLATFORM", "offscreen") && qputenv("QT_QUICK_BACKEND", "software");
    // Left to the end of the process: what else is static may still belong to it.
    static auto* const application = isPrepared ? new QGuiApplication(count, values) : nullptr;
    QAccessible::setActive(true);
    return *application;
}

} // namespace

Screen::Screen(const QUrl& component, const QVariantMap& properties, const Install& install, Turn turn)
    : WindowUser(std::move(turn)), application_(offscreenApplication()),
      previousHandler_(qInstallMessageHandler(failOnWarning)) {
    installAppearance(engine_);
    install(engine_);
    QQmlComponent loaded(&engine_, component);
    show(loaded, properties, leastSize);
}

Screen::Screen(const QString& body, QSize size)
    : application_(offscreenApplication()), previousHandler_(qInstallMessageHandler(failOnWarning)) {
    installAppearance(engine_);
    QQmlComponent written(&engine_);
    written.setData((imports + body).toUtf8(), QUrl(QStringLiteral("qrc:/Test.qml")));
    show(written, {}, size);
}

Screen::~Screen() {
    window_.reset();
    qInstallMessageHandler(previousHandler_);
}

void Screen::show(QQmlComponent& component, const QVariantMap& properties, QSize size) {
    AppearanceState::of(engine_)->setReducedMotion(true);
    window_ = std::make_unique<QQuickWindow>();
    window_->resize(size);
    root_ = qobject_cast<QQuickItem*>(component.beginCreate(engine_.rootContext()));
    if (!root_)
        throw std::runtime_error(component.errorString().toStdString());
    component.setInitialProperties(root_, properties);
    root_->setParent(window_.get());
    root_->setParentItem(window_->contentItem());
    root_->setSize(size);
    component.completeCreate();
    window_->show();
    window_->requestActivate();
    sitDownAt(*window_);
    if (!comesTo([this] { return window_->isActive(); }))
        throw std::runtime_error("The window did not become active.");
    for (int step = 2; step > 0; --step) // a pointer that stands still tells nothing
        QTest::mouseMove(window_.get(), QPoint(size.width() - step, size.height() - step));
}

QVariant Screen::value(const char* name) const {
    return root_->property(name);
}

QQuickItem* Screen::item(const QString& name) {
    QAccessibleInterface* const element = found(name);
    auto* const item = element ? qobject_cast<QQuickItem*>(element->object()) : nullptr;
    if (!item)
        throw std::runtime_error("There is no element named “" + name.toStdString() + "”.");
    return item;
}

QString Screen::toolTip() const {
    return textBelow(*window_->contentItem(), false);
}

void Screen::clickAt(QPoint place) {
    QTest::mouseMove(window_.get(), place);
    QTest::mouseClick(window_.get(), Qt::LeftButton, Qt::NoModifier, place);
    settle();
}

void Screen::hover(const QString& name) {
    const QQuickItem* const pointed = item(name);
    const QPointF centre(pointed->width() / 2, pointed->height() / 2);
    QTest::mouseMove(window_.get(), pointed->mapToScene(centre).toPoint());
    settle();
}

void Screen::activate(const QString& name) {
    QAccessibleInterface* const element = found(name);
    QAccessibleActionInterface* const actions = element ? element->actionInterface() : nullptr;
    if (!actions)
        throw std::runtime_error("“" + name.toStdString() + "” offers no action.");
    actions->doAction(QAccessibleActionInterface::pressAction());
    settle();
}

void Screen::focus(const QString& name) {
    item(name)->forceActiveFocus(Qt::TabFocusReason);
    settle();
}

} // namespace marrowbox::test
