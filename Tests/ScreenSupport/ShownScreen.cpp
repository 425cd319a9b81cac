#include "ScreenSupport/ShownScreen.h"

#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/InstallAppearance.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <QTest>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

constexpr int patience = 5000; // milliseconds
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
    static const QGuiApplication application(count, values);
}

using Visit = std::function<bool(QAccessibleInterface&)>;

/// Visits what can be seen, from the front; ends when a visit says so.
bool visit(QAccessibleInterface* element, const Visit& visitor) {
    if (!element || element->state().invisible)
        return false;
    for (int i = element->childCount() - 1; i >= 0; --i)
        if (visit(element->child(i), visitor))
            return true;
    return visitor(*element);
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
    : turn_((startApplication(), std::move(turn))) {
    warnings.clear();
    qInstallMessageHandler(collect);
    installed(engine_, install);
    window_ = std::make_unique<QQuickWindow>();
    window_->resize(leastSize);
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

void ShownScreen::settle() const {
    for (int round = 0; round < 3; ++round) {
        turn_();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QAccessibleInterface* ShownScreen::find(const QString& name) const {
    QAccessibleInterface* match = nullptr;
    visit(QAccessible::queryAccessibleInterface(window_.get()), [&](QAccessibleInterface& element) {
        if (element.text(QAccessible::Name) != name)
            return false;
        match = &element;
        // A label often has the name of the control beside it.
        return element.role() != QAccessible::StaticText && element.role() != QAccessible::Heading;
    });
    return match;
}

bool ShownScreen::shows(const QString& name) const {
    return find(name) != nullptr;
}

bool ShownScreen::comesToShow(const QString& name) {
    return QTest::qWaitFor([&] { return settle(), shows(name); }, patience);
}

bool ShownScreen::ceasesToShow(const QString& name) {
    return QTest::qWaitFor([&] { return settle(), !shows(name); }, patience);
}

QAccessibleInterface* ShownScreen::found(const QString& name) {
    if (!comesToShow(name))
        ADD_FAILURE() << name.toStdString() << " is not among: " << names().join(u'\n').toStdString();
    return find(name);
}

QString ShownScreen::description(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element ? element->text(QAccessible::Description) : QString();
}

QString ShownScreen::textIn(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element ? element->text(QAccessible::Value) : QString();
}

bool ShownScreen::isChecked(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element && element->state().checked;
}

void ShownScreen::click(const QString& name) {
    QAccessibleInterface* element = found(name);
    if (!element)
        return;
    // As far as a person would scroll.
    auto* const item = qobject_cast<QQuickItem*>(element->object());
    const QRect seen(QPoint(), window_->size());
    if (item && !seen.contains(window_->mapFromGlobal(element->rect().center())))
        item->forceActiveFocus(Qt::OtherFocusReason);
    settle();
    const QPoint place = window_->mapFromGlobal(element->rect().center());
    QTest::mouseMove(window_.get(), place);
    QTest::mouseClick(window_.get(), Qt::LeftButton, {}, place);
    settle();
}

void ShownScreen::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_.get(), key, modifiers);
    settle();
}

void ShownScreen::type(const QString& text) {
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, window_.get(), Qt::Key_unknown, letter, Qt::NoModifier);
    settle();
}

void ShownScreen::tabTo(const QString& name) {
    constexpr int mostStops = 60;
    for (int stop = 0; stop < mostStops; ++stop) {
        if (focused() == name)
            return;
        press(Qt::Key_Tab);
    }
    ADD_FAILURE() << "The focus never comes to " << name.toStdString();
}

QString ShownScreen::focused() const {
    QObject* const item = window_->activeFocusItem();
    QAccessibleInterface* const element = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
    return element ? element->text(QAccessible::Name) : QString();
}

QStringList ShownScreen::names() const {
    QStringList all;
    visit(QAccessible::queryAccessibleInterface(window_.get()), [&](QAccessibleInterface& element) {
        all.prepend(element.text(QAccessible::Name));
        return false;
    });
    all.removeAll(QString());
    return all;
}

} // namespace marrowbox::test
