#include "ScreenSupport/Fit.h"

#include <QQuickItem>
#include <algorithm>
#include <vector>

namespace marrowbox::test {

namespace {

constexpr qreal tolerance = 1; // glyphs may reach a little over their place

// As the toolkit numbers them for its items.
constexpr int leftOutAtTheEnd = Qt::ElideRight;
constexpr int nothingLeftOut = Qt::ElideNone;

/// Something that is seen, and where.
struct Seen {
    const QQuickItem* item = nullptr;
    const QQuickItem* layer = nullptr; ///< The popup that it is in; none for the page itself.
    QRectF place;                      ///< In the window, as far as it is in sight.
};

struct Sight {
    std::vector<Seen> texts;
    std::vector<Seen> buttons;
};

QRectF inWindow(const QQuickItem& item, const QRectF& rectangle) {
    return item.mapRectToScene(rectangle);
}

QRectF wholeOf(const QQuickItem& item) {
    return inWindow(item, QRectF(0, 0, item.width(), item.height()));
}

bool isText(const QQuickItem& item) {
    return item.inherits("QQuickText") && !item.property("text").toString().isEmpty();
}

/// What the lines of a text take. The toolkit adds the room between lines below the last one too, which our
/// texts take back.
QRectF linesOf(const QQuickItem& text) {
    return text.boundingRect().adjusted(0, 0, 0, std::min(0.0, text.property("bottomPadding").toReal()));
}

/// Also what is pressed and is no button to the toolkit.
bool isButton(const QQuickItem& item) {
    return item.inherits("QQuickAbstractButton") || item.inherits("QQuickComboBox") ||
           item.inherits("QQuickTextField");
}

void look(const QQuickItem& item, const QQuickItem* layer, QRectF window, Sight& sight) {
    if (!item.isVisible() || qFuzzyIsNull(item.opacity()))
        return;
    if (item.inherits("QQuickPopupItem"))
        layer = &item;
    if (item.clip())
        window &= wholeOf(item);
    const QRectF place = (isText(item) ? inWindow(item, linesOf(item)) : wholeOf(item)).intersected(window);
    if (!place.isEmpty() && isText(item))
        sight.texts.push_back({&item, layer, place});
    if (!place.isEmpty() && isButton(item))
        sight.buttons.push_back({&item, layer, place});
    for (const QQuickItem* const child : item.childItems())
        look(*child, layer, window, sight);
}

QString quoted(const QQuickItem& item) {
    return u'“' + item.property("text").toString() + u'”';
}

bool overlap(const Seen& one, const Seen& other) {
    const QRectF shared = one.place & other.place;
    return one.layer == other.layer && shared.width() > tolerance && shared.height() > tolerance;
}

/// Whatever surrounds a text has to hold the whole of it; from where it scrolls on, from left to right alone.
void judgeSurroundings(const Seen& text, const QQuickWindow& window, QStringList& all) {
    const QRectF whole = inWindow(*text.item, linesOf(*text.item));
    const auto holds = [&whole](const QRectF& room, bool scrolls) {
        const bool across =
            whole.left() > room.left() - tolerance && whole.right() < room.right() + tolerance;
        const bool down = whole.top() > room.top() - tolerance && whole.bottom() < room.bottom() + tolerance;
        return across && (scrolls || down);
    };
    bool scrolls = false;
    bool fits = true;
    for (const QQuickItem* around = text.item->parentItem(); around; around = around->parentItem()) {
        scrolls = scrolls || around->inherits("QQuickFlickable");
        if (around->clip() || around->inherits("QQuickControl"))
            fits = fits && holds(wholeOf(*around), scrolls);
    }
    if (!fits || !holds(QRectF(QPointF(), window.size()), scrolls))
        all += quoted(*text.item) + " reaches out of what it stands in";
}

void judgeText(const Seen& text, QStringList& all) {
    const QQuickItem& item = *text.item;
    const int elide = item.property("elide").toInt();
    const QRectF drawn = linesOf(item);
    if (item.property("truncated").toBool() && (elide == leftOutAtTheEnd || elide == nothingLeftOut))
        all += quoted(item) + " is cut at its end";
    else if (drawn.width() > item.width() + tolerance || drawn.height() > item.height() + tolerance)
        all += quoted(item) + " is larger than its place";
}

} // namespace

QStringList misfits(const QQuickWindow& window) {
    Sight sight;
    look(*window.contentItem(), nullptr, QRectF(QPointF(), window.size()), sight);
    QStringList all;
    for (std::size_t index = 0; index < sight.texts.size(); ++index) {
        const Seen& text = sight.texts[index];
        judgeText(text, all);
        judgeSurroundings(text, window, all);
        for (std::size_t later = index + 1; later < sight.texts.size(); ++later)
            if (overlap(text, sight.texts[later]))
                all += quoted(*text.item) + " lies on " + quoted(*sight.texts[later].item);
        for (const Seen& button : sight.buttons)
            if (!button.item->isAncestorOf(text.item) && overlap(text, button))
                all += quoted(*text.item) + " lies on a button";
    }
    all.removeDuplicates();
    return all;
}

} // namespace marrowbox::test
