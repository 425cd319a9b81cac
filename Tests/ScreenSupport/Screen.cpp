#include "ScreenSupport/Screen.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace marrowbox::test {

namespace {

const QString imports =
    QStringLiteral("import QtQuick\nimport QtQuick.Layouts\nimport Marrowbox.Appearance\n");

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtWarningMsg || type == QtCriticalMsg)
        ADD_FAILURE() << message.toStdString();
}

QAccessibleInterface* search(QAccessibleInterface* element, const QString& name, QAccessible::Role role) {
    if (!element || element->state().invisible)
        return nullptr;
    if (element->text(QAccessible::Name) == name && (role == QAccessible::NoRole || element->role() == role))
        return element;
    for (int index = 0; index < element->childCount(); ++index)
        if (QAccessibleInterface* found = search(element->child(index), name, role))
            return found;
    return nullptr;
}

bool showsBelow(const QQuickItem& item, const QString& words) {
    if (!item.isVisible())
        return false;
    if (item.inherits("QQuickText") && item.property("text").toString() == words)
        return true;
    const QList<QQuickItem*> children = item.childItems();
    return std::any_of(children.begin(), children.end(),
                       [&](const QQuickItem* child) { return showsBelow(*child, words); });
}

void describe(QAccessibleInterface* element, int depth, QString& text) {
    if (!element || element->state().invisible)
        return;
    text += QStringLiteral("%1%2 “%3” (%4)\n")
                .arg(QString(depth * 2, u' '), qAccessibleRoleString(element->role()),
                     element->text(QAccessible::Name), element->text(QAccessible::Description));
    for (int index = 0; index < element->childCount(); ++index)
        describe(element->child(index), depth + 1, text);
}

} // namespace

QGuiApplication& offscreenApplication() {
    static int count = 1;
    static char program[] = "tests";
    static char* arguments[] = {program, nullptr};
    static const bool prepared = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        return true;
    }();
    static auto* const application = prepared ? new QGuiApplication(count, arguments) : nullptr;
    QAccessible::setActive(true);
    return *application;
}

Screen::Screen(const QString& body, QSize size) {
    qInstallMessageHandler(failOnWarning);
    installAppearance(engine_);
    AppearanceState::of(engine_)->setReducedMotion(true);
    window_ = std::make_unique<QQuickWindow>();
    window_->resize(size);
    QQmlComponent component(&engine_);
    component.setData((imports + body).toUtf8(), QUrl(QStringLiteral("qrc:/Test.qml")));
    QObject* const made = component.beginCreate(engine_.rootContext());
    root_ = qobject_cast<QQuickItem*>(made);
    if (!root_)
        throw std::runtime_error(component.errorString().toStdString());
    root_->setParent(window_.get());
    root_->setParentItem(window_->contentItem());
    root_->setSize(size);
    component.completeCreate();
    window_->show();
    window_->requestActivate();
    if (!waitUntil([this] { return window_->isActive(); }))
        throw std::runtime_error("The window did not become active.");
    for (int step = 2; step > 0; --step) // a pointer that stands still tells nothing
        QTest::mouseMove(window_.get(), QPoint(size.width() - step, size.height() - step));
    window_->grabWindow();
}

Screen::~Screen() {
    window_.reset();
    qInstallMessageHandler(nullptr);
}

QVariant Screen::value(const char* name) const {
    return root_->property(name);
}

QAccessibleInterface* Screen::find(const QString& name, QAccessible::Role role) {
    QCoreApplication::processEvents();
    return search(QAccessible::queryAccessibleInterface(window_.get()), name, role);
}

QAccessibleInterface& Screen::mustFind(const QString& name) {
    QAccessibleInterface* const found = find(name);
    if (!found)
        throw std::runtime_error("There is no element named “" + name.toStdString() + "” in\n" +
                                 tree().toStdString());
    return *found;
}

bool Screen::shows(const QString& words) {
    return showsBelow(*window_->contentItem(), words);
}

QString Screen::tree() {
    QString text;
    describe(QAccessible::queryAccessibleInterface(window_.get()), 0, text);
    return text;
}

QString Screen::descriptionOf(const QString& name) {
    return mustFind(name).text(QAccessible::Description);
}

bool Screen::hasFocus(const QString& name) {
    const QQuickItem* const focused = window_->activeFocusItem();
    const QQuickItem* const wanted = item(name);
    return focused && (focused == wanted || wanted->isAncestorOf(focused));
}

QQuickItem* Screen::item(const QString& name) {
    auto* const found = qobject_cast<QQuickItem*>(mustFind(name).object());
    if (!found)
        throw std::runtime_error("There is no element named “" + name.toStdString() + "” in\n" +
                                 tree().toStdString());
    return found;
}

QPoint Screen::centreOf(const QString& name) {
    window_->grabWindow(); // lays out what has just come
    const QQuickItem* const found = item(name);
    return found->mapToScene(QPointF(found->width() / 2, found->height() / 2)).toPoint();
}

void Screen::click(const QString& name) {
    clickAt(centreOf(name));
}

void Screen::clickAt(QPoint place) {
    QTest::mouseMove(window_.get(), place);
    QTest::mouseClick(window_.get(), Qt::LeftButton, Qt::NoModifier, place);
}

void Screen::hover(const QString& name) {
    QTest::mouseMove(window_.get(), centreOf(name));
}

void Screen::press(const QString& name) {
    QAccessibleActionInterface* const actions = mustFind(name).actionInterface();
    if (!actions)
        throw std::runtime_error("“" + name.toStdString() + "” offers no action.");
    actions->doAction(QAccessibleActionInterface::pressAction());
}

void Screen::focus(const QString& name) {
    item(name)->forceActiveFocus(Qt::TabFocusReason);
}

void Screen::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_.get(), key, modifiers);
}

void Screen::type(const QString& text) {
    for (const QChar character : text)
        QTest::keyClick(window_.get(), character.toLatin1());
}

bool Screen::waitUntil(const std::function<bool()>& holds) {
    return QTest::qWaitFor(holds, 5000);
}

} // namespace marrowbox::test
