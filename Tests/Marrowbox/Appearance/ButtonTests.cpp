#include "ScreenSupport/Screen.h"

#include "Marrowbox/Appearance/AppearanceState.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using test::Screen;

const QString oneButton = QStringLiteral(R"(
    ColumnLayout {
        property int pressed: 0
        property alias buttonEnabled: button.enabled
        property alias scaleOfButton: button.scale
        property alias opacityOfButton: button.opacity
        ActionButton {
            id: button
            text: "Back up now"
            spokenName: "Back up Pictures"
            help: "Starts at once"
            disabledReason: "A backup is running."
            emphasis: ActionButton.Primary
            onClicked: parent.pressed += 1
        }
    })");

QString buttonWith(const QString& properties) {
    return QStringLiteral("Item { ActionButton { text: \"Go\"; %1 } }").arg(properties);
}

QQuickItem* surfaceOf(Screen& screen) {
    return screen.item("Go")->property("background").value<QQuickItem*>();
}

QColor labelOf(Screen& screen) {
    return screen.item("Go")->property("labelColor").value<QColor>();
}

} // namespace

TEST(ActionButton, isPressedByClickSpaceReturnAndAssistiveTechnology) {
    Screen screen(oneButton);
    screen.click("Back up Pictures");
    EXPECT_EQ(screen.value("pressed"), 1);
    screen.focus("Back up Pictures");
    screen.press(Qt::Key_Space);
    EXPECT_EQ(screen.value("pressed"), 2);
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("pressed"), 3);
    screen.activate("Back up Pictures");
    EXPECT_EQ(screen.value("pressed"), 4);
}

TEST(ActionButton, tellsItsRoleNameAndHelp) {
    Screen screen(oneButton);
    EXPECT_TRUE(screen.find("Back up Pictures", QAccessible::Button));
    EXPECT_EQ(screen.description("Back up Pictures"), "Starts at once");
}

TEST(ActionButton, refusesEveryPressWhileDisabledAndSaysWhy) {
    Screen screen(oneButton);
    screen.root().setProperty("buttonEnabled", false);
    screen.click("Back up Pictures");
    screen.activate("Back up Pictures");
    screen.focus("Back up Pictures");
    screen.press(Qt::Key_Space);
    EXPECT_EQ(screen.value("pressed"), 0);
    EXPECT_EQ(screen.description("Back up Pictures"), "A backup is running.");
    EXPECT_NEAR(screen.value("opacityOfButton").toDouble(), 0.42, 0.001);
}

TEST(ActionButton, isReachedByTabAndNotByAClick) {
    Screen screen(R"(RowLayout { ActionButton { text: "First" } ActionButton { text: "Second" } })");
    screen.click("First");
    EXPECT_NE(screen.focused(), "First");
    screen.press(Qt::Key_Tab);
    EXPECT_EQ(screen.focused(), "First");
    screen.press(Qt::Key_Tab);
    EXPECT_EQ(screen.focused(), "Second");
    screen.press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(screen.focused(), "First");
}

TEST(ActionButton, writesDarkOnYellowAndWhiteOnEveryOtherFill) {
    Screen yellow(buttonWith("emphasis: ActionButton.Primary; theme: \"sunshine\""));
    EXPECT_EQ(labelOf(yellow), QColor::fromRgbF(0.28F, 0.19F, 0.02F));
    Screen teal(buttonWith("emphasis: ActionButton.Primary; theme: \"teal\""));
    EXPECT_EQ(labelOf(teal), QColor(Qt::white));
    Screen destructive(buttonWith("emphasis: ActionButton.Destructive; theme: \"sunshine\""));
    EXPECT_EQ(labelOf(destructive), QColor(Qt::white));
}

TEST(ActionButton, doesNotReactToThePointerWhileDisabled) {
    Screen screen(buttonWith("emphasis: ActionButton.Secondary; enabled: false"));
    screen.hover("Go");
    EXPECT_NEAR(surfaceOf(screen)->property("fillOpacity").toDouble(), 0.055, 0.0001);
    EXPECT_NEAR(surfaceOf(screen)->property("borderOpacity").toDouble(), 0.16, 0.0001);
}

TEST(ActionButton, becomesActiveUnderThePointer) {
    Screen screen(buttonWith("emphasis: ActionButton.Quiet; theme: \"coral\""));
    EXPECT_EQ(surfaceOf(screen)->property("fillOpacity").toDouble(), 0);
    EXPECT_EQ(surfaceOf(screen)->property("borderOpacity").toDouble(), 0);
    screen.hover("Go");
    EXPECT_NEAR(surfaceOf(screen)->property("fillOpacity").toDouble(), 0.13, 0.0001);
    EXPECT_NEAR(surfaceOf(screen)->property("borderOpacity").toDouble(), 0.38, 0.0001);
    EXPECT_EQ(labelOf(screen), QColor::fromRgbF(0.82F, 0.20F, 0.26F));
}

TEST(ActionButton, showsTheFocusInItsBorder) {
    Screen screen(buttonWith("emphasis: ActionButton.Secondary"));
    screen.focus("Go");
    EXPECT_NEAR(surfaceOf(screen)->property("borderOpacity").toDouble(), 0.85, 0.0001);
}

TEST(ActionButton, darkensAFillUnderThePointerAndMoreWhilePressed) {
    Screen screen(buttonWith("emphasis: ActionButton.Primary; down: false"));
    EXPECT_EQ(surfaceOf(screen)->property("overlayOpacity").toDouble(), 0);
    screen.hover("Go");
    EXPECT_NEAR(surfaceOf(screen)->property("overlayOpacity").toDouble(), 0.08, 0.0001);
    screen.item("Go")->setProperty("down", true);
    EXPECT_NEAR(surfaceOf(screen)->property("overlayOpacity").toDouble(), 0.16, 0.0001);
}

TEST(ActionButton, shrinksWhilePressedUnlessMotionIsReduced) {
    Screen screen(buttonWith("down: true"));
    EXPECT_EQ(screen.item("Go")->scale(), 1);
    AppearanceState::of(screen.engine())->setReducedMotion(false);
    EXPECT_NEAR(screen.item("Go")->scale(), 0.98, 0.0001);
}

TEST(ActionButton, changesItsSurfaceGraduallyUnlessMotionIsReduced) {
    Screen screen(buttonWith("emphasis: ActionButton.Primary; down: false"));
    AppearanceState::of(screen.engine())->setReducedMotion(false);
    // Found beforehand: the surface goes on changing while it is looked for.
    QQuickItem* const button = screen.item("Go");
    const QQuickItem* const edge = surfaceOf(screen)->childItems().constFirst();
    const auto border = [edge] {
        return qvariant_cast<QObject*>(edge->property("border"))->property("color").value<QColor>().alphaF();
    };
    const auto overlay = [edge] { return edge->property("color").value<QColor>().alphaF(); };
    button->setProperty("down", true);
    EXPECT_LT(border(), 0.01F);
    EXPECT_LT(overlay(), 0.01F);
    EXPECT_TRUE(screen.comesTo([&] { return border() > 0.37F && overlay() > 0.15F; }));
    AppearanceState::of(screen.engine())->setReducedMotion(true);
    button->setProperty("down", false);
    EXPECT_LT(border(), 0.01F);
    EXPECT_LT(overlay(), 0.01F);
}

TEST(ActionButton, handsTheFocusOnWhenItVanishes) {
    Screen screen(R"(RowLayout {
        property bool shown: true
        ActionButton { text: "Before" }
        ActionButton { text: "Back"; visible: parent.shown }
        ActionButton { text: "Use"; visible: parent.shown }
        ActionButton { text: "Next" } })");
    screen.focus("Back");
    screen.root().setProperty("shown", false);
    EXPECT_TRUE(screen.comesTo([&] { return screen.focused() == "Next"; }));
}

TEST(ActionButton, handsTheFocusToWhatTakesItsPlace) {
    Screen screen(R"(RowLayout {
        property bool busy: true
        ActionButton { id: begin; text: "Begin"; visible: !parent.busy; successor: stop }
        ActionButton { id: stop; text: "Stop"; visible: parent.busy; successor: begin }
        ActionButton { text: "Next" } })");
    screen.focus("Stop");
    screen.root().setProperty("busy", false);
    EXPECT_TRUE(screen.comesTo([&] { return screen.focused() == "Begin"; }));
}

TEST(ActionButton, handsTheFocusOnWhenWhatTakesItsPlaceCannotBePressed) {
    Screen screen(R"(RowLayout {
        property bool shown: true
        ActionButton { id: before; text: "Before"; enabled: false }
        ActionButton { text: "Stop"; visible: parent.shown; successor: before }
        ActionButton { text: "Next" } })");
    screen.focus("Stop");
    screen.root().setProperty("shown", false);
    EXPECT_TRUE(screen.comesTo([&] { return screen.focused() == "Next"; }));
}

TEST(SettingsGear, isNamedForWhatItOpens) {
    Screen screen("Item { property int opened: 0; SettingsGear { onClicked: parent.opened += 1 } }");
    EXPECT_TRUE(screen.find("Backup settings", QAccessible::Button));
    screen.activate("Backup settings");
    EXPECT_EQ(screen.value("opened"), 1);
}

TEST(Disclosure, isToggledByItsWholeHeaderAndTellsItsState) {
    Screen screen(R"(ColumnLayout {
        Disclosure { Layout.fillWidth: true; title: "Developer connection"; Words { text: "Inside" } } })");
    EXPECT_EQ(screen.description("Developer connection"), "Collapsed. Toggle this section");
    EXPECT_FALSE(screen.find("Inside"));
    screen.click("Developer connection");
    EXPECT_EQ(screen.description("Developer connection"), "Expanded. Toggle this section");
    EXPECT_TRUE(screen.find("Inside"));
    screen.focus("Developer connection");
    screen.press(Qt::Key_Space);
    EXPECT_FALSE(screen.find("Inside"));
}

} // namespace marrowbox
