#include "ScreenSupport/WindowUser.h"

#include <QCoreApplication>
#include <QQuickItem>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <utility>

namespace marrowbox::test {

namespace {

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

/// How far down, in pixels, the view that hides an element has to be scrolled to show it; with the view.
struct Hidden {
    QQuickItem* view = nullptr; ///< None when nothing hides it.
    qreal down = 0;
};

Hidden hiddenBy(const QQuickItem& item) {
    for (QQuickItem* view = item.parentItem(); view; view = view->parentItem()) {
        if (!view->inherits("QQuickFlickable") || !view->property("interactive").toBool())
            continue;
        const QRectF place = item.mapRectToItem(view, item.boundingRect());
        if (place.top() < 0)
            return {view, place.top()};
        if (place.bottom() > view->height())
            return {view, place.bottom() - view->height()};
    }
    return {};
}

QAccessibleInterface* named(QAccessibleInterface* root, const QString& name,
                            QAccessible::Role role = QAccessible::NoRole) {
    QAccessibleInterface* match = nullptr;
    visit(root, [&](QAccessibleInterface& element) {
        const bool hasRole = role == QAccessible::NoRole || element.role() == role;
        if (!hasRole || element.text(QAccessible::Name) != name)
            return false;
        match = &element;
        // A label often has the name of the control beside it.
        return element.role() != QAccessible::StaticText && element.role() != QAccessible::Heading;
    });
    return match;
}

} // namespace

WindowUser::WindowUser(Turn turn, std::chrono::milliseconds patience)
    : turn_(std::move(turn)), patience_(static_cast<int>(patience.count())) {
}

void WindowUser::settle() const {
    for (int round = 0; round < 3; ++round) {
        if (turn_)
            turn_();
        QCoreApplication::processEvents();
        window_->grabWindow(); // lays out what has just come
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QAccessibleInterface* WindowUser::find(const QString& name, QAccessible::Role role) const {
    return named(QAccessible::queryAccessibleInterface(window_), name, role);
}

bool WindowUser::shows(const QString& name) const {
    return find(name) != nullptr;
}

bool WindowUser::comesToShow(const QString& name) {
    return comesTo([&] { return shows(name); });
}

bool WindowUser::ceasesToShow(const QString& name) {
    return comesTo([&] { return !shows(name); });
}

bool WindowUser::comesTo(const std::function<bool()>& hold) {
    return QTest::qWaitFor([&] { return settle(), hold(); }, patience_);
}

QAccessibleInterface* WindowUser::found(const QString& name) {
    if (!comesToShow(name))
        ADD_FAILURE() << name.toStdString() << " is not among: " << names().join(u'\n').toStdString();
    return find(name);
}

QString WindowUser::description(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element ? element->text(QAccessible::Description) : QString();
}

QString WindowUser::textIn(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element ? element->text(QAccessible::Value) : QString();
}

QAccessible::Role WindowUser::role(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element ? element->role() : QAccessible::NoRole;
}

bool WindowUser::isChecked(const QString& name) {
    QAccessibleInterface* const element = found(name);
    return element && element->state().checked;
}

void WindowUser::click(const QString& name) {
    if (QAccessibleInterface* const element = found(name))
        click(*element);
}

void WindowUser::click(const QString& name, const QString& row) {
    QAccessibleInterface* const parent = found(row);
    QAccessibleInterface* const element = parent ? named(parent, name) : nullptr;
    if (!element)
        ADD_FAILURE() << row.toStdString() << " has no " << name.toStdString();
    else
        click(*element);
}

void WindowUser::scrollTo(const QQuickItem& item) {
    constexpr int mostTurns = 200;
    constexpr int mostPixels = 100;
    const QQuickItem* scrolled = nullptr;
    // A click on what still moves only stops it.
    const auto isAtRest = [&] { return !scrolled || !scrolled->property("moving").toBool(); };
    for (int turn = 0; turn < mostTurns; ++turn) {
        const auto [view, down] = hiddenBy(item);
        if (!view && comesTo(isAtRest))
            return;
        if (!view)
            break;
        scrolled = view;
        const QPointF place = view->mapToScene(QPointF(view->width() / 2, view->height() / 2));
        const int pixels = std::clamp(static_cast<int>(down < 0 ? std::floor(down) : std::ceil(down)),
                                      -mostPixels, mostPixels);
        QWheelEvent wheel(place, window_->mapToGlobal(place), QPoint(0, -pixels), QPoint(0, -pixels * 8),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(window_, &wheel);
        settle();
    }
    ADD_FAILURE() << "An element cannot be scrolled to.";
}

void WindowUser::click(QAccessibleInterface& element) {
    settle();
    if (const auto* const item = qobject_cast<QQuickItem*>(element.object()))
        scrollTo(*item);
    QPoint place;
    // What comes in the meantime may move the element away from under the pointer: a person follows it.
    const auto staysUnderPointer = [&] {
        const QPoint now = window_->mapFromGlobal(element.rect().center());
        QTest::mouseMove(window_, now);
        return std::exchange(place, now) == now;
    };
    comesTo(staysUnderPointer);
    QTest::mouseClick(window_, Qt::LeftButton, {}, place);
    settle();
}

void WindowUser::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_, key, modifiers);
    settle();
}

void WindowUser::type(const QString& text) {
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, window_, Qt::Key_unknown, letter, Qt::NoModifier);
    settle();
}

void WindowUser::tabTo(const QString& name) {
    constexpr int mostStops = 60;
    for (int stop = 0; stop < mostStops; ++stop) {
        if (focused() == name)
            return;
        press(Qt::Key_Tab);
    }
    ADD_FAILURE() << "The focus never comes to " << name.toStdString();
}

QString WindowUser::focused() const {
    // A field inside a control has no name of its own.
    for (QQuickItem* item = window_->activeFocusItem(); item; item = item->parentItem()) {
        QAccessibleInterface* const element = QAccessible::queryAccessibleInterface(item);
        if (const QString name = element ? element->text(QAccessible::Name) : QString(); !name.isEmpty())
            return name;
    }
    return {};
}

QStringList WindowUser::names() const {
    QStringList all;
    visit(QAccessible::queryAccessibleInterface(window_), [&](QAccessibleInterface& element) {
        all.prepend(element.text(QAccessible::Name));
        return false;
    });
    all.removeAll(QString());
    return all;
}

} // namespace marrowbox::test
