// Text that controls write on grounds of their own, in the colours in which it is drawn.
#include "ScreenSupport/Screen.h"

#include "Marrowbox/Appearance/Accent.h"
#include "Marrowbox/Appearance/AppearanceState.h"
#include "Marrowbox/Appearance/Contrast.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using test::Screen;

const QQuickItem* textBelow(const QQuickItem& item, const QString& words) {
    if (item.inherits("QQuickText") && item.property("text").toString() == words)
        return &item;
    for (const QQuickItem* child : item.childItems())
        if (const QQuickItem* const found = textBelow(*child, words))
            return found;
    return nullptr;
}

QColor colorOf(const QObject* object, const char* property = "color") {
    return object->property(property).value<QColor>();
}

class DrawnText : public testing::TestWithParam<bool> {
  protected:
    void darken(Screen& screen) { AppearanceState::of(screen.engine())->setDark(GetParam()); }
    const Colors colors = colorsOf(GetParam() ? ColorMode::dark : ColorMode::light);
};

INSTANTIATE_TEST_SUITE_P(Appearance, DrawnText, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "dark" : "light"; });

} // namespace

TEST_P(DrawnText, ofANumberedHeadingIsReadableInEveryTheme) {
    const AppearanceState known;
    for (const QVariant& accent : known.accents()) {
        const QString theme = accent.value<Accent*>()->name();
        Screen screen(
            QStringLiteral("Item { SectionEyebrow { number: \"1\"; title: \"Source\"; theme: \"%1\" } }")
                .arg(theme));
        darken(screen);
        const QQuickItem* const number = textBelow(screen.root(), "1");
        const QQuickItem* const title = textBelow(screen.root(), "Source");
        ASSERT_TRUE(number && title);
        const QColor circle = over(colorOf(number->parentItem()), colors.sheet);
        EXPECT_GE(contrast(colorOf(number), circle), readableContrast) << theme.toStdString();
        EXPECT_GE(contrast(colorOf(title), colors.sheet), readableContrast) << theme.toStdString();
    }
}

TEST_P(DrawnText, ofANumberedHeadingIsInItsTheme) {
    Screen screen("Item { SectionEyebrow { number: \"1\"; title: \"Source\"; theme: \"coral\" } }");
    darken(screen);
    EXPECT_EQ(colorOf(textBelow(screen.root(), "Source")).rgb(),
              AppearanceState::of(screen.engine())->accentOf("coral")->ink().rgb());
}

TEST_P(DrawnText, ofAMenuIsReadableUnderThePointer) {
    Screen screen(R"(Item {
        MenuButton {
            x: 300
            help: "Actions"
            ActionMenuItem { text: "Mount" }
            ActionMenuItem { text: "Disconnect"; destructive: true }
        } })");
    darken(screen);
    screen.activate("Actions");
    for (const QString& name : {QStringLiteral("Mount"), QStringLiteral("Disconnect")}) {
        screen.hover(name);
        QQuickItem* const item = screen.item(name);
        ASSERT_TRUE(item->property("highlighted").toBool()) << screen.names().join(u'\n').toStdString();
        const auto* const surface = item->property("background").value<QQuickItem*>();
        ASSERT_GT(colorOf(surface).alpha(), 0);
        const QColor ground = over(colorOf(surface), colors.popup);
        EXPECT_GE(contrast(colorOf(item, "ink"), ground), readableContrast) << name.toStdString();
    }
}

TEST(Words, thatWrapLeaveNoRoomBelowTheirLastLine) {
    Screen screen(R"(ColumnLayout {
        property real plain: one.implicitHeight
        property real wrapped: same.implicitHeight
        property real twoLines: two.implicitHeight
        Words { id: one; text: "Letters" }
        Words { id: same; text: "Letters"; wrapMode: Text.Wrap }
        Words { id: two; text: "Letters\nPictures"; wrapMode: Text.Wrap } })");
    const double line = screen.value("plain").toDouble();
    EXPECT_DOUBLE_EQ(screen.value("wrapped").toDouble(), line);
    EXPECT_NEAR(screen.value("twoLines").toDouble(), line * 2.3, 0.01);
}

} // namespace marrowbox
