#include "ScreenSupport/Screen.h"

#include <QQuickItem>
#include <gtest/gtest.h>

namespace marrowbox {

using test::Screen;

namespace {

const QString rows = QStringLiteral(R"(
    RowList {
        id: list
        property int opened: -1
        label: "Backups"
        model: 5000
        delegate: ListRow {
            required property int index
            width: ListView.view.width
            title: "Row " + index
            subtitle: "Never backed up"
            selected: index === 1
            onClicked: list.opened = index
        }
    })");

const QString pane = QStringLiteral(R"(
    ScrollPane {
        id: pane
        contentHeight: column.implicitHeight
        Column {
            id: column
            Repeater {
                model: 40
                ActionButton { required property int index; text: "Button " + index }
            }
        }
    })");

} // namespace

TEST(ListRow, isPressedByClickReturnAndAssistiveTechnology) {
    Screen screen(rows);
    ASSERT_TRUE(screen.find("Row 2", QAccessible::ListItem));
    screen.click("Row 2");
    EXPECT_EQ(screen.value("opened"), 2);
    screen.activate("Row 3");
    EXPECT_EQ(screen.value("opened"), 3);
    screen.focus("Row 4");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(screen.value("opened"), 4);
}

TEST(ListRow, tellsThatItIsSelectedAndWhatStandsBelow) {
    Screen screen(rows);
    EXPECT_TRUE(screen.find("Row 1")->state().selected);
    EXPECT_FALSE(screen.find("Row 2")->state().selected);
    EXPECT_EQ(screen.description("Row 2"), "Never backed up");
}

TEST(ListRow, showsALongTitleWholeUnderThePointer) {
    const QString title = "Scans of all letters and receipts of the years before we moved";
    Screen screen(QStringLiteral("ColumnLayout { ListRow { title: \"%1\"; Layout.preferredWidth: 200 } "
                                 "ListRow { title: \"Short\"; Layout.preferredWidth: 200 } "
                                 "Item { Layout.fillHeight: true } }")
                      .arg(title));
    screen.hover(title);
    EXPECT_TRUE(screen.comesTo([&] { return screen.toolTip() == title; }));
    screen.hover("Short");
    EXPECT_TRUE(screen.comesTo([&] { return screen.toolTip().isEmpty(); }));
}

TEST(ListRow, takesNoMarkInItsTitleForAKey) {
    Screen screen(R"(Item { property int pressed: 0
        ListRow { title: "R&D"; onClicked: parent.pressed += 1 } })");
    screen.press(Qt::Key_D, Qt::AltModifier);
    EXPECT_EQ(screen.value("pressed"), 0);
}

TEST(RowButton, isAButtonThatIsPressedByClickKeyAndAssistiveTechnology) {
    Screen screen(R"(Item { property int pressed: 0
        RowButton { title: "Settings"; symbol: "gearshape"; onClicked: parent.pressed += 1 } })");
    ASSERT_TRUE(screen.find("Settings", QAccessible::Button));
    EXPECT_FALSE(screen.find("Settings", QAccessible::ListItem));
    screen.click("Settings");
    screen.focus("Settings");
    screen.press(Qt::Key_Return);
    screen.activate("Settings");
    EXPECT_EQ(screen.value("pressed"), 3);
}

TEST(RowList, makesOnlyTheRowsInSight) {
    Screen screen(rows);
    EXPECT_TRUE(screen.find("Backups", QAccessible::List));
    const int made =
        static_cast<int>(screen.root().property("contentItem").value<QQuickItem*>()->childItems().size());
    EXPECT_GT(made, 5);
    EXPECT_LT(made, 60);
}

TEST(RowList, movesWithTheArrowsAndScrollsAlong) {
    Screen screen(rows);
    screen.press(Qt::Key_Tab);
    for (int step = 0; step < 40; ++step)
        screen.press(Qt::Key_Down);
    const auto isInSight = [&] {
        const double top = screen.item("Row 40")->mapToScene(QPointF()).y();
        return top >= 0 && top < screen.root().height();
    };
    EXPECT_TRUE(screen.comesTo(isInSight));
    EXPECT_EQ(screen.focused(), "Row 40");
}

TEST(ScrollPane, bringsIntoSightWhatGetsTheFocus) {
    Screen screen(pane);
    EXPECT_EQ(screen.value("contentY").toDouble(), 0);
    screen.focus("Button 35");
    const QQuickItem* const button = screen.item("Button 35");
    const double bottom = button->mapToScene(QPointF(0, button->height())).y();
    EXPECT_LE(bottom, screen.root().height());
    screen.focus("Button 0");
    EXPECT_EQ(screen.value("contentY").toDouble(), 0);
}

TEST(ProgressLine, tellsItsPercentageInItsDescription) {
    Screen screen(R"(Item { property real done: 42; property real total: 100
        ProgressLine { width: 200; label: "Backing up"; done: parent.done; total: parent.total } })");
    EXPECT_TRUE(screen.find("Backing up", QAccessible::ProgressBar));
    EXPECT_EQ(screen.description("Backing up"), "42 percent");
    screen.root().setProperty("done", 99.9);
    EXPECT_EQ(screen.description("Backing up"), "99 percent");
    screen.root().setProperty("done", 120);
    EXPECT_EQ(screen.description("Backing up"), "100 percent");
    screen.root().setProperty("total", 0);
    EXPECT_EQ(screen.description("Backing up"), "Under way");
}

TEST(Banner, hasAsMuchRoomBelowItsTextAsAbove) {
    Screen screen(R"(Item {
        property real beside: banner.implicitHeight - Appearance.mediumIcon - Appearance.gap * 2
        Banner { id: banner; text: "It is gone." } })");
    EXPECT_DOUBLE_EQ(screen.value("beside").toDouble(), 0) << "an ordinary line is lower than the symbol";
}

TEST(Banner, tellsItselfAndActs) {
    Screen screen(R"(Item { property int acted: 0
        Banner { width: parent.width; text: "It is gone."; action: "Retry"; onActed: parent.acted += 1 } })");
    EXPECT_TRUE(screen.find("It is gone.", QAccessible::AlertMessage));
    screen.click("Retry");
    EXPECT_EQ(screen.value("acted"), 1);
}

TEST(ElidedWords, leavesOutTheMiddleAndTellsTheWhole) {
    Screen screen(R"(ElidedWords { text: "/media/anna/Archive Disk/Backups/Family pictures of many years" })",
                  {160, 60});
    EXPECT_EQ(screen.value("truncated"), true);
    EXPECT_TRUE(screen.find("/media/anna/Archive Disk/Backups/Family pictures of many years"));
}

TEST(AppMark, isACloudWhereItsPictureIsMissing) {
    Screen screen("Item { AppMark {} }");
    QQuickItem* const mark = screen.item("Marrowbox");
    ASSERT_FALSE(mark->childItems().isEmpty());
    const QQuickItem* const cloud = mark->childItems().constFirst();
    EXPECT_FALSE(cloud->isVisible());
    const QtMessageHandler strict =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    mark->setProperty("source", QUrl("qrc:/no-such-picture.svg"));
    qInstallMessageHandler(strict);
    EXPECT_TRUE(cloud->isVisible());
    EXPECT_EQ(cloud->property("name"), "cloud.fill");
    EXPECT_TRUE(screen.find("Marrowbox", QAccessible::Graphic));
}

TEST(AppMark, isNamedForTheProgram) {
    Screen screen("Item { AppMark {} }");
    EXPECT_TRUE(screen.find("Marrowbox", QAccessible::Graphic));
}

} // namespace marrowbox
