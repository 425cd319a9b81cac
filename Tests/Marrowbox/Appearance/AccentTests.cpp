#include "Marrowbox/Appearance/Accent.h"
#include "Marrowbox/Appearance/AppearanceState.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

struct GivenTheme {
    AccentTheme theme;
    QString stored;
    QString title;
    QColor color;
};

const std::vector<GivenTheme> given{
    {AccentTheme::blue, "blue", "Blue", QColor::fromRgbF(0.14F, 0.39F, 0.92F)},
    {AccentTheme::sage, "sage", "Mint", QColor::fromRgbF(0.02F, 0.51F, 0.34F)},
    {AccentTheme::teal, "teal", "Teal", QColor::fromRgbF(0.00F, 0.50F, 0.54F)},
    {AccentTheme::indigo, "indigo", "Indigo", QColor::fromRgbF(0.33F, 0.32F, 0.88F)},
    {AccentTheme::violet, "violet", "Violet", QColor::fromRgbF(0.59F, 0.24F, 0.81F)},
    {AccentTheme::coral, "coral", "Coral", QColor::fromRgbF(0.82F, 0.20F, 0.26F)},
    {AccentTheme::sunshine, "sunshine", "Sunshine", QColor::fromRgbF(0.98F, 0.72F, 0.16F)},
    {AccentTheme::graphite, "graphite", "Slate", QColor::fromRgbF(0.36F, 0.42F, 0.51F)},
};
const QColor sunshineInk = QColor::fromRgbF(0.28F, 0.19F, 0.02F);

} // namespace

TEST(Accent, offersAllThemesInTheirOrderWithTheirTitles) {
    const AppearanceState state;
    const QVariantList accents = state.accents();
    ASSERT_EQ(accents.size(), static_cast<int>(given.size()));
    for (qsizetype index = 0; index < accents.size(); ++index) {
        const auto* const accent = accents[index].value<Accent*>();
        const GivenTheme& expected = given[static_cast<std::size_t>(index)];
        EXPECT_EQ(accent->name(), expected.stored);
        EXPECT_EQ(accent->title(), expected.title);
        EXPECT_EQ(accent->color(), expected.color);
    }
}

TEST(Accent, keepsTheGivenInkOnLightGrounds) {
    for (const GivenTheme& theme : given) {
        const AccentColors colors = accentColors(theme.theme, ColorMode::light);
        EXPECT_EQ(colors.ink, theme.theme == AccentTheme::sunshine ? sunshineInk : theme.color);
    }
}

TEST(Accent, writesWhiteOnEveryFillButYellow) {
    for (const GivenTheme& theme : given)
        for (const ColorMode mode : {ColorMode::light, ColorMode::dark}) {
            const AccentColors colors = accentColors(theme.theme, mode);
            EXPECT_EQ(colors.onColor, theme.theme == AccentTheme::sunshine ? sunshineInk : QColor(Qt::white));
            EXPECT_EQ(colors.color, theme.color);
        }
}

TEST(Colors, keepsTheGivenOnesOnLightGrounds) {
    const Colors colors = colorsOf(ColorMode::light);
    EXPECT_EQ(colors.alert, QColor::fromRgbF(0.80F, 0.13F, 0.19F));
    EXPECT_EQ(colors.success, QColor::fromRgbF(0.10F, 0.55F, 0.30F));
    EXPECT_EQ(colors.secondary.rgb(), colors.text.rgb());
    EXPECT_NEAR(colors.secondary.alphaF(), 0.52F, 0.001F);
    EXPECT_NEAR(colors.border.alphaF(), 0.07F, 0.001F);
    EXPECT_NEAR(colors.faint.alphaF(), 0.38F, 0.001F);
}

TEST(AppearanceState, drawsInBlueWithoutAThemeOrWithAnUnknownOne) {
    AppearanceState state;
    EXPECT_EQ(state.theme(), "blue");
    state.setTheme("coral");
    EXPECT_EQ(state.theme(), "coral");
    state.setTheme("mauve");
    EXPECT_EQ(state.theme(), "blue");
    state.setTheme("");
    EXPECT_EQ(state.theme(), "blue");
}

TEST(AppearanceState, tellsEveryColorOfAChangeToDarkOnce) {
    AppearanceState state;
    QSignalSpy dark(&state, &AppearanceState::darkChanged);
    QSignalSpy accent(state.accent(), &Accent::changed);
    const QColor ink = state.accent()->ink();
    state.setDark(true);
    state.setDark(true);
    EXPECT_EQ(dark.count(), 1);
    EXPECT_EQ(accent.count(), 1);
    EXPECT_NE(state.accent()->ink(), ink);
    state.setDark(false);
    EXPECT_EQ(state.accent()->ink(), ink);
}

} // namespace marrowbox
