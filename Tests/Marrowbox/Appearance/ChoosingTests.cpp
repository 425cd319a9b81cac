#include "ScreenSupport/Screen.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::Screen;

namespace {

// Each screen keeps what is wanted apart from what holds, as a store does that may refuse.
const QString toggle = QStringLiteral(R"(
    Item {
        property bool holds: false
        property bool obeys: true
        property int asked: 0
        Toggle {
            width: parent.width
            text: "Start at login"
            disabledReason: "The desktop does not allow it."
            enabled: parent.parent !== null
            on: parent.holds
            onSwitched: on => { parent.asked += 1; if (parent.obeys) parent.holds = on; }
        }
    })");

const QString picker = QStringLiteral(R"(
    ColumnLayout {
        property string holds: "daily"
        property alias usable: picker.enabled
        Picker {
            id: picker
            label: "Frequency"
            emptyTitle: "Choose one"
            disabledReason: "Switched off elsewhere."
            choices: [{ value: "hourly", title: "Every hour" }, { value: "daily", title: "Every day" },
                      { value: "weekly", title: "Every week" }]
            chosen: parent.holds
            onPicked: value => parent.holds = value
        }
        Item { Layout.fillHeight: true }
    })");

const QString segmented = QStringLiteral(R"(
    RowLayout {
        property int holds: 0
        Segmented {
            label: "Settings section"
            kind: Segmented.Tabs
            titles: ["General", "Accounts", "Email"]
            current: parent.holds
            onPicked: index => parent.holds = index
        }
        ActionButton { text: "Next" }
    })");

} // namespace

TEST(Toggle, isSwitchedByClickSpaceReturnAndAssistiveTechnology) {
    Screen screen(toggle);
    screen.click("Start at login");
    EXPECT_EQ(screen.value("holds"), true);
    screen.focus("Start at login");
    screen.press(Qt::Key_Space);
    EXPECT_EQ(screen.value("holds"), false);
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("holds"), true);
    screen.activate("Start at login");
    EXPECT_EQ(screen.value("holds"), false);
    EXPECT_EQ(screen.value("asked"), 4);
}

TEST(Toggle, tellsWhetherItIsOn) {
    Screen screen(toggle);
    QAccessibleInterface* const element = screen.find("Start at login", QAccessible::CheckBox);
    ASSERT_TRUE(element);
    EXPECT_FALSE(element->state().checked);
    screen.root().setProperty("holds", true);
    EXPECT_TRUE(element->state().checked);
}

TEST(Toggle, goesBackWhenWhatIsWantedIsRefused) {
    Screen screen(toggle);
    screen.root().setProperty("obeys", false);
    screen.click("Start at login");
    EXPECT_EQ(screen.value("asked"), 1);
    EXPECT_EQ(screen.item("Start at login")->property("checked"), false);
}

TEST(Toggle, refusesWhileDisabledAndSaysWhy) {
    Screen screen(toggle);
    screen.item("Start at login")->setEnabled(false);
    screen.click("Start at login");
    screen.activate("Start at login");
    EXPECT_EQ(screen.value("asked"), 0);
    EXPECT_EQ(screen.description("Start at login"), "The desktop does not allow it.");
}

TEST(Picker, tellsWhatIsChosen) {
    Screen screen(picker);
    EXPECT_TRUE(screen.find("Frequency", QAccessible::ComboBox));
    EXPECT_EQ(screen.description("Frequency"), "Every day");
    screen.root().setProperty("holds", "never");
    EXPECT_EQ(screen.description("Frequency"), "Choose one");
}

TEST(Picker, choosesFromItsListByClick) {
    Screen screen(picker);
    screen.click("Frequency");
    ASSERT_TRUE(screen.find("Every week", QAccessible::ListItem));
    screen.click("Every week");
    EXPECT_EQ(screen.value("holds"), "weekly");
    EXPECT_FALSE(screen.find("Every week", QAccessible::ListItem));
}

TEST(Picker, choosesByKeyboard) {
    Screen screen(picker);
    screen.focus("Frequency");
    screen.press(Qt::Key_Return);
    ASSERT_TRUE(screen.find("Every hour", QAccessible::ListItem));
    screen.press(Qt::Key_Up);
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("holds"), "hourly");
    screen.press(Qt::Key_Down);
    EXPECT_EQ(screen.value("holds"), "daily");
}

TEST(Picker, choosesByAssistiveTechnology) {
    Screen screen(picker);
    screen.activate("Frequency");
    screen.activate("Every hour");
    EXPECT_EQ(screen.value("holds"), "hourly");
}

TEST(Picker, closesOnEscapeAndChangesNothing) {
    Screen screen(picker);
    screen.click("Frequency");
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.comesTo([&] { return !screen.find("Every week", QAccessible::ListItem); }))
        << screen.names().join(u'\n').toStdString();
    EXPECT_EQ(screen.value("holds"), "daily");
}

TEST(Picker, offersToChooseNothingWhereThatHasAName) {
    Screen screen(picker);
    screen.click("Frequency");
    ASSERT_TRUE(screen.find("Choose one", QAccessible::ListItem));
    screen.click("Choose one");
    EXPECT_EQ(screen.value("holds"), "");
    EXPECT_EQ(screen.description("Frequency"), "Choose one");
}

TEST(Picker, refusesWhileDisabledAndSaysWhy) {
    Screen screen(picker);
    screen.root().setProperty("usable", false);
    screen.click("Frequency");
    screen.activate("Frequency");
    EXPECT_FALSE(screen.find("Every week", QAccessible::ListItem));
    EXPECT_EQ(screen.description("Frequency"), "Switched off elsewhere.");
}

TEST(Segmented, isAGroupOfTabsOfWhichOneHolds) {
    Screen screen(segmented);
    EXPECT_TRUE(screen.find("Settings section", QAccessible::PageTabList));
    EXPECT_TRUE(screen.find("General", QAccessible::PageTab)->state().selected);
    screen.click("Email");
    EXPECT_EQ(screen.value("holds"), 2);
    EXPECT_TRUE(screen.find("Email", QAccessible::PageTab)->state().selected);
    screen.activate("Accounts");
    EXPECT_EQ(screen.value("holds"), 1);
}

TEST(Segmented, isOneStopForTabAndMovesWithTheArrows) {
    Screen screen(segmented);
    screen.press(Qt::Key_Tab);
    EXPECT_EQ(screen.focused(), "General");
    screen.press(Qt::Key_Right);
    EXPECT_EQ(screen.value("holds"), 1);
    EXPECT_EQ(screen.focused(), "Accounts");
    screen.press(Qt::Key_Left);
    screen.press(Qt::Key_Left);
    EXPECT_EQ(screen.value("holds"), 0);
    screen.press(Qt::Key_Tab);
    EXPECT_EQ(screen.focused(), "Next");
}

TEST(ThemePicker, asksForTheThemeOfATile) {
    Screen screen(R"(ColumnLayout {
        property string holds: "blue"
        ThemePicker { Layout.fillWidth: true; chosen: parent.holds; onPicked: theme => parent.holds = theme } })");
    EXPECT_TRUE(screen.find("Blue accent", QAccessible::RadioButton)->state().checked);
    EXPECT_TRUE(screen.description("Mint accent").startsWith("Use "));
    screen.click("Mint accent");
    EXPECT_EQ(screen.value("holds"), "sage");
    EXPECT_FALSE(screen.find("Blue accent")->state().checked);
    screen.activate("Slate accent");
    EXPECT_EQ(screen.value("holds"), "graphite");
}

} // namespace marrowbox
