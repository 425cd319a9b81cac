#include "ScreenSupport/Screen.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::Screen;

namespace {

const QString sheet = QStringLiteral(R"(
    Item {
        id: page
        property int saved: 0
        property int behind: 0
        property alias shown: sheet.visible
        ActionButton { text: "Behind"; onClicked: page.behind += 1 }
        Sheet {
            id: sheet
            visible: true
            title: "Backup settings"
            sheetWidth: 400
            TextEntry { Layout.fillWidth: true; label: "Name" }
            footerContent: [
                ActionButton { text: "Cancel"; onClicked: sheet.close() },
                ActionButton { text: "Save"; onClicked: page.saved += 1 }
            ]
        }
    })");

const QString question = QStringLiteral(R"(
    Item {
        id: page
        property string answer: ""
        property alias shown: question.visible
        property alias destructive: question.destructive
        Question {
            id: question
            visible: true
            title: "Remove it?"
            message: "Nothing is changed in Google Drive."
            yesText: "Remove backup"
            destructive: true
            onAnsweredYes: page.answer = "yes"
            onAnsweredNo: page.answer = "no"
        }
    })");

const QString menu = QStringLiteral(R"(
    Item {
        id: page
        property string chosen: ""
        MenuButton {
            x: 300
            help: "Snapshot actions"
            ActionMenuItem { text: "Mount"; onTriggered: page.chosen = "mount" }
            ActionMenuItem {
                text: "Enable"
                enabled: false
                disabledReason: "It is enabled already."
                onTriggered: page.chosen = "enable"
            }
            ActionMenuItem { text: "Restore"; onTriggered: page.chosen = "restore" }
        }
    })");

} // namespace

TEST(Sheet, beginsWithItsTitleAsAHeading) {
    Screen screen(sheet);
    EXPECT_TRUE(screen.find("Backup settings", QAccessible::Heading));
}

TEST(Sheet, isNotClosedByAClickBesideItNorPressesWhatIsBehind) {
    Screen screen(sheet);
    screen.clickAt({10, 10});
    screen.click("Behind");
    EXPECT_EQ(screen.value("shown"), true);
    EXPECT_EQ(screen.value("behind"), 0);
}

TEST(Sheet, isClosedByEscapeAndByItsCloseButton) {
    Screen screen(sheet);
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.comesTo([&] { return !screen.value("shown").toBool(); }));
    screen.root().setProperty("shown", true);
    screen.click("Close");
    EXPECT_TRUE(screen.comesTo([&] { return !screen.value("shown").toBool(); }));
}

TEST(Sheet, keepsTheFocusWithin) {
    Screen screen(sheet);
    for (int step = 0; step < 8; ++step) {
        screen.press(Qt::Key_Tab);
        EXPECT_NE(screen.focused(), "Behind");
    }
    screen.focus("Save");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("saved"), 1);
}

TEST(Question, isNotAnsweredByAClickBesideIt) {
    Screen screen(question);
    screen.clickAt({5, 5});
    EXPECT_EQ(screen.value("shown"), true);
    EXPECT_EQ(screen.value("answer"), "");
}

TEST(Question, takesEscapeForNo) {
    Screen screen(question);
    screen.press(Qt::Key_Escape);
    EXPECT_EQ(screen.value("answer"), "no");
}

TEST(Question, answersByItsButtons) {
    Screen screen(question);
    screen.click("Remove backup");
    EXPECT_EQ(screen.value("answer"), "yes");
    screen.root().setProperty("shown", true);
    screen.activate("Cancel");
    EXPECT_EQ(screen.value("answer"), "no");
}

TEST(Question, standsOnTheHarmlessButtonBeforeSomethingDestructive) {
    Screen screen(question);
    EXPECT_EQ(screen.focused(), "Cancel");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("answer"), "no");
}

TEST(Question, standsOnNoWhereReturnMeansThat) {
    Screen screen(R"(Item { property string answer: ""
        id: page
        Question {
            visible: true
            title: "Quit?"
            message: "The backup ends."
            noText: "Keep running"
            yesText: "Quit"
            noIsDefault: true
            onAnsweredNo: page.answer = "no"
        } })");
    EXPECT_EQ(screen.focused(), "Keep running");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("answer"), "no");
}

TEST(MenuButton, opensItsMenuAndTriggersAnItemByClick) {
    Screen screen(menu);
    EXPECT_TRUE(screen.find("Snapshot actions", QAccessible::Button));
    screen.click("Snapshot actions");
    ASSERT_TRUE(screen.find("Mount", QAccessible::MenuItem));
    screen.click("Mount");
    EXPECT_EQ(screen.value("chosen"), "mount");
    EXPECT_TRUE(screen.comesTo([&] { return !screen.find("Mount"); }));
}

TEST(MenuButton, isUsedByKeyboard) {
    Screen screen(menu);
    screen.focus("Snapshot actions");
    screen.press(Qt::Key_Space);
    ASSERT_TRUE(screen.find("Restore", QAccessible::MenuItem));
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Return);
    EXPECT_NE(screen.value("chosen"), "enable");
    EXPECT_NE(screen.value("chosen"), "");
}

TEST(MenuButton, isPressedByAssistiveTechnologyDownToItsItems) {
    Screen screen(menu);
    screen.activate("Snapshot actions");
    screen.activate("Restore");
    EXPECT_EQ(screen.value("chosen"), "restore");
}

TEST(MenuButton, refusesADisabledItemAndSaysWhy) {
    Screen screen(menu);
    screen.activate("Snapshot actions");
    EXPECT_EQ(screen.description("Enable"), "It is enabled already.");
    screen.activate("Enable");
    screen.click("Enable");
    EXPECT_EQ(screen.value("chosen"), "");
}

TEST(MenuButton, keepsItsHelpOutOfTheWayOfItsMenu) {
    Screen screen(menu);
    screen.hover("Snapshot actions");
    EXPECT_TRUE(screen.comesTo([&] { return screen.toolTip() == "Snapshot actions"; }));
    screen.click("Snapshot actions");
    ASSERT_TRUE(screen.find("Mount", QAccessible::MenuItem));
    EXPECT_EQ(screen.toolTip(), "");
}

TEST(HelpTip, appearsUnderThePointer) {
    Screen screen("Item { IconButton { x: 200; y: 100; symbol: \"eject\"; help: \"Eject snapshot\" } }");
    screen.hover("Eject snapshot");
    EXPECT_TRUE(screen.comesTo([&] { return screen.toolTip() == "Eject snapshot"; }));
}

} // namespace marrowbox
