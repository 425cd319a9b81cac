#include "Marrowbox/MarrowboxApp/TrayItem.h"

#include "Desktopless.h"

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

struct TrayItemOfAStore : testing::Test {
    TrayItemOfAStore() {
        test::startDesktoplessApplication();
        item = std::make_unique<TrayItem>(
            state, changes, [this](const TrayCommand::Any& command) { done.push_back(command); },
            [](const QString&) { return QIcon(QPixmap(16, 16)); });
    }

    Uuid addUnit(const std::string& name) {
        SyncUnit unit;
        unit.id = Uuid::random();
        unit.name = name;
        state.configuration.change([&](AppConfiguration& current) { current.units.push_back(unit); });
        return unit.id;
    }
    void mount(const std::string& name) {
        const Uuid id = Uuid::random();
        state.mounted.change([&](auto& mounted) {
            mounted.emplace(id, SnapshotMount::Mounted{.id = id, .displayName = name});
        });
    }
    static QMenu& menu() {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (auto* const menu = qobject_cast<QMenu*>(widget); menu && !menu->parentWidget())
                return *menu;
        throw std::runtime_error("There is no menu.");
    }
    /// The rows as a person reads them, without the marks of keys.
    static std::vector<std::string> rows() {
        std::vector<std::string> texts;
        for (const QAction* const action : menu().actions())
            texts.push_back(action->isSeparator() ? "-" : action->iconText().toStdString());
        return texts;
    }

    StoreChanges changes;
    AppState state{changes};
    std::vector<TrayCommand::Any> done;
    std::unique_ptr<TrayItem> item;
};

} // namespace

TEST_F(TrayItemOfAStore, followsTheStoreAndDoesWhatItsRowsSay) {
    const Uuid papers = addUnit("Papers");
    EXPECT_THAT(rows(), testing::ElementsAre("Your backup companion", "Open Marrowbox", "-", "Back up Papers",
                                             "-", "Settings", "Quit Marrowbox"));
    menu().actions().at(3)->trigger();
    EXPECT_THAT(done, testing::ElementsAre(TrayCommand::Any(TrayCommand::BackUp{papers})));
    state.activeUnitID.set(papers);
    state.progress.set("Preparing snapshot…");
    EXPECT_EQ(rows().front(), "Preparing snapshot…");
    state.progress.set("Reading Google Drive…");
    EXPECT_EQ(rows().front(), "Reading Google Drive…");
}

TEST_F(TrayItemOfAStore, showsTheMarksInANameAsTheyAre) {
    addUnit("R&D_notes");
    mount("Fish & Chips");
    EXPECT_THAT(rows(), testing::IsSupersetOf({"Back up R&D_notes", "Fish & Chips"}));
    state.progress.set("Copying A&B…");
    state.activeUnitID.set(Uuid::random());
    EXPECT_EQ(rows().front(), "Copying A&B…");
}

TEST_F(TrayItemOfAStore, keepsNoMenuOfAVolumeThatHasGone) {
    for (const char* const name : {"One", "Two", "Three"})
        mount(name);
    state.mounted.set({});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_THAT(menu().findChildren<QMenu*>(), testing::IsEmpty());
}

TEST(MenuText, savesEveryMarkFromBeingTakenForAKey) {
    struct Row {
        const char* text;
        const char* ownMenu;
        const char* menuOfTheDesktop;
    };
    const std::vector<Row> table = {
        {"Papers", "Papers", "Papers"}, {"R&D", "R&&D", "&R&D"},
        {"A&B&C", "A&&B&&C", "&A&B&C"}, {"my_papers", "my_papers", "my__papers"},
        {"R&D_1", "R&&D_1", "&R&D__1"},
    };
    for (const Row& row : table) {
        EXPECT_EQ(menuText(row.text, MenuMark::ampersand), row.ownMenu);
        EXPECT_EQ(menuText(row.text, MenuMark::underscore), row.menuOfTheDesktop);
    }
}

} // namespace marrowbox
