#include "Marrowbox/Appearance/Accent.h"
#include "Marrowbox/Appearance/Contrast.h"

#include <boost/describe/enumerators.hpp>
#include <boost/mp11/algorithm.hpp>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

struct NamedColor {
    std::string name;
    QColor color;
};

std::vector<NamedColor> grounds(const Colors& colors) {
    return {{"window", colors.window}, {"sidebar", colors.sidebar}, {"card", colors.card},
            {"sheet", colors.sheet},   {"popup", colors.popup},     {"field", colors.field}};
}

// The colours that were chosen here. In the dark, also those that were given and had to become lighter.
std::vector<NamedColor> inks(const Colors& colors, ColorMode mode) {
    std::vector<NamedColor> list{
        {"text", colors.text}, {"muted", colors.muted}, {"warning", colors.warning}, {"alert", colors.alert}};
    if (mode == ColorMode::dark) {
        list.push_back({"success", colors.success});
        list.push_back({"secondary", colors.secondary});
        list.push_back({"faint", colors.faint});
    }
    return list;
}

std::vector<AccentTheme> themes() {
    std::vector<AccentTheme> list;
    boost::mp11::mp_for_each<boost::describe::describe_enumerators<AccentTheme>>(
        [&list](auto described) { list.push_back(described.value); });
    return list;
}

QColor faded(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

void expectReadable(const NamedColor& ink, const NamedColor& ground) {
    EXPECT_GE(contrast(over(ink.color, ground.color), ground.color), readableContrast)
        << ink.name << " on " << ground.name;
}

class EachMode : public testing::TestWithParam<ColorMode> {
  protected:
    Colors colors = colorsOf(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Appearance, EachMode, testing::Values(ColorMode::light, ColorMode::dark),
                         [](const auto& mode) { return mode.param == ColorMode::dark ? "dark" : "light"; });

} // namespace

TEST(Contrast, knowsBlackOnWhiteAndEqualColors) {
    EXPECT_DOUBLE_EQ(contrast(Qt::black, Qt::white), 21);
    EXPECT_DOUBLE_EQ(contrast(Qt::red, Qt::red), 1);
    EXPECT_NEAR(contrast(QColor(0x777777), Qt::white), 4.48, 0.01);
}

TEST(Contrast, doesNotDependOnTheOrder) {
    EXPECT_DOUBLE_EQ(contrast(Qt::blue, Qt::white), contrast(Qt::white, Qt::blue));
}

TEST(Contrast, mixesATranslucentColorWithItsGround) {
    const QColor mixed = over(faded(Qt::black, 0.5F), Qt::white);
    EXPECT_NEAR(mixed.red(), 128, 1);
    EXPECT_EQ(mixed.alpha(), 255);
}

TEST(LightenedOn, leavesAReadableColorAlone) {
    EXPECT_EQ(lightenedOn(Qt::black, Qt::white), QColor(Qt::white));
}

TEST(LightenedOn, lightensJustAsFarAsNeededAndKeepsTheHue) {
    const QColor ground(0x202020);
    const QColor given(20, 60, 160);
    ASSERT_LT(contrast(given, ground), readableContrast);
    const QColor lightened = lightenedOn(ground, given);
    EXPECT_GE(contrast(lightened, ground), readableContrast);
    EXPECT_LT(contrast(lightened, ground), readableContrast + 0.3);
    EXPECT_NEAR(lightened.hslHue(), given.hslHue(), 2);
}

TEST(LightenedOn, endsAtWhiteWhereNothingIsReadable) {
    EXPECT_EQ(lightenedOn(Qt::white, QColor(200, 200, 210)).lightness(), 255);
}

TEST(StrengthenedOn, makesATranslucentColorOpaqueEnough) {
    const QColor ground(0x202020);
    const QColor strengthened = strengthenedOn(ground, faded(Qt::white, 0.2F));
    EXPECT_GE(contrast(over(strengthened, ground), ground), readableContrast);
    EXPECT_LT(strengthened.alphaF(), 0.6F);
}

TEST_P(EachMode, readsEveryTextOnEveryGround) {
    for (const NamedColor& ground : grounds(colors))
        for (const NamedColor& ink : inks(colors, GetParam()))
            expectReadable(ink, ground);
}

TEST_P(EachMode, readsTextOnAllThatIsTintedOrFilled) {
    expectReadable({"inverseLabel", colors.inverseLabel}, {"inverse", colors.inverse});
    expectReadable({"alertLabel", colors.alertLabel}, {"alertFill", colors.alertFill});
    for (const AccentTheme theme : themes()) {
        const AccentColors accent = accentColors(theme, GetParam());
        const std::string name = storedName(theme).toStdString();
        expectReadable({name + " label", accent.onColor}, {name, accent.color});
        for (const NamedColor& ground : grounds(colors)) {
            const NamedColor tinted{ground.name + " tinted " + name,
                                    over(faded(accent.tint, 0.13F), ground.color)};
            expectReadable({"text", colors.text}, tinted);
            expectReadable({"muted", colors.muted}, tinted);
        }
    }
}

TEST_P(EachMode, readsBannersAndPills) {
    for (const NamedColor& ground : grounds(colors))
        for (const NamedColor& tone : inks(colors, GetParam())) {
            const NamedColor tinted{ground.name + " under a tint of " + tone.name,
                                    over(faded(tone.color, 0.09F), ground.color)};
            expectReadable({"text", colors.text}, tinted);
        }
}

TEST(Accent, readsItsInkOnEveryDarkGroundAlsoWhileTinted) {
    const Colors colors = colorsOf(ColorMode::dark);
    for (const AccentTheme theme : themes()) {
        const AccentColors accent = accentColors(theme, ColorMode::dark);
        const NamedColor ink{storedName(theme).toStdString() + " ink", accent.ink};
        for (const NamedColor& ground : grounds(colors)) {
            expectReadable(ink, ground);
            expectReadable(ink, {ground.name + " tinted", over(faded(accent.tint, 0.13F), ground.color)});
        }
    }
}

} // namespace marrowbox
