#include "ScreenSupport/Screen.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::Screen;

namespace {

const QString entry = QStringLiteral(R"(
    ColumnLayout {
        id: page
        property string typed: ""
        property int accepted: 0
        property string error: ""
        TextEntry {
            Layout.fillWidth: true
            label: "Send to"
            placeholder: "name@example.com"
            error: page.error
            onEdited: text => page.typed = text
            onAccepted: page.accepted += 1
        }
        Item { Layout.fillHeight: true }
    })");

const QString stepper = QStringLiteral(R"(
    Item {
        property int holds: 9
        NumberStepper { label: "Hour"; to: 23; number: parent.holds; onPicked: number => parent.holds = number }
    })");

} // namespace

TEST(TextEntry, tellsWhatIsTypedAndWhenItIsDone) {
    Screen screen(entry);
    ASSERT_TRUE(screen.find("Send to", QAccessible::EditableText));
    screen.focus("Send to");
    screen.type("anna");
    EXPECT_EQ(screen.value("typed"), "anna");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("accepted"), 1);
}

TEST(TextEntry, takesTheFocusOnAClick) {
    Screen screen(entry);
    screen.click("Send to");
    EXPECT_EQ(screen.focused(), "Send to");
}

TEST(TextEntry, describesItsErrorInPlaceOfItsPlaceholder) {
    Screen screen(entry);
    EXPECT_EQ(screen.description("Send to"), "name@example.com");
    screen.root().setProperty("error", "Enter a valid address.");
    EXPECT_EQ(screen.description("Send to"), "Enter a valid address.");
    EXPECT_TRUE(screen.find("Enter a valid address."));
}

TEST(NumberStepper, stepsWithTheArrowsAndWrapsAround) {
    Screen screen(stepper);
    ASSERT_TRUE(screen.find("Hour", QAccessible::SpinBox));
    screen.focus("Hour");
    screen.press(Qt::Key_Up);
    EXPECT_EQ(screen.value("holds"), 10);
    screen.root().setProperty("holds", 23);
    screen.press(Qt::Key_Up);
    EXPECT_EQ(screen.value("holds"), 0);
    EXPECT_EQ(screen.description("Hour"), "00");
}

TEST(NumberStepper, takesATypedNumber) {
    Screen screen(stepper);
    screen.focus("Hour");
    screen.press(Qt::Key_A, Qt::ControlModifier);
    screen.type("17");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("holds"), 17);
}

TEST(NumberStepper, takesATypedNumberWhileTheFieldStillHasTheFocus) {
    Screen screen(stepper);
    screen.focus("Hour");
    screen.press(Qt::Key_A, Qt::ControlModifier);
    screen.type("1");
    EXPECT_EQ(screen.value("holds"), 1);
    screen.type("7");
    EXPECT_EQ(screen.value("holds"), 17);
    screen.type("5"); // there is no such hour
    EXPECT_EQ(screen.value("holds"), 17);
    EXPECT_EQ(screen.focused(), "Hour");
}

TEST(NumberStepper, takesWhatAssistiveTechnologySets) {
    Screen screen(stepper);
    QAccessibleValueInterface* const value = screen.find("Hour", QAccessible::SpinBox)->valueInterface();
    ASSERT_TRUE(value);
    EXPECT_EQ(value->currentValue().toInt(), 9);
    value->setCurrentValue(12);
    EXPECT_EQ(screen.value("holds"), 12);
}

} // namespace marrowbox
