#include "Repository/RunPlan.h"

#include "Models/BackupError.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>
#include <set>

namespace marrowbox {

namespace {

using namespace test;

SourceEntry item(std::string_view path, std::string_view id, std::string_view version = "1") {
    SourceEntry source = file(path, id).source;
    source.id = id;
    source.version = version;
    return source;
}

SnapshotEntry kept(const SourceEntry& source, std::string_view content) {
    SnapshotEntry entry = file(source.path, content);
    entry.source = source;
    return entry;
}

SourceEntry folderItem(std::string_view path) {
    return folder(path).source;
}

struct Row {
    std::string name;
    std::vector<SourceEntry> listing;
    std::vector<SnapshotEntry> previous;
    std::vector<SnapshotEntry> entries;
    std::vector<std::string> downloads;
    RunSummary summary;
    std::set<std::string> missing = {}; ///< Paths in the previous snapshot whose objects are gone.
};

RunPlan planned(const Row& row) {
    const std::vector<Shared<SnapshotEntry>> previous(row.previous.begin(), row.previous.end());
    return planRun(row.listing, previous, [&](const SnapshotEntry& entry) {
        return !row.missing.contains(entry.source.path.string());
    });
}

std::vector<Row> firstRunRows() {
    return {
        {.name = "an empty first listing"},
        {.name = "a first run carries folders and fetches every file",
         .listing = {folderItem("f"), item("f/a", "A"), item("b", "B")},
         .entries = {folder("f")},
         .downloads = {"f/a", "b"},
         .summary = {.added = 2}},
        {.name = "two new paths with one fingerprint are fetched twice",
         .listing = {item("a", "A"), item("b", "A")},
         .downloads = {"a", "b"},
         .summary = {.added = 2}},
    };
}

std::vector<Row> reuseRows() {
    return {
        {.name = "nothing changed",
         .listing = {item("b", "B"), folderItem("f"), item("f/a", "A")},
         .previous = {kept(item("b", "B"), "b"), folder("f"), kept(item("f/a", "A"), "a")},
         .entries = {kept(item("b", "B"), "b"), folder("f"), kept(item("f/a", "A"), "a")},
         .summary = {.unchanged = 2}},
        {.name = "a moved file counts as added and as removed, and says its new path",
         .listing = {item("new", "A")},
         .previous = {kept(item("old", "A"), "a")},
         .entries = {kept(item("new", "A"), "a")},
         .summary = {.added = 1, .removed = 1}},
        {.name = "content that came back at the path of other content counts as added",
         .listing = {item("b", "A")},
         .previous = {kept(item("a", "A"), "a"), kept(item("b", "B"), "b")},
         .entries = {kept(item("b", "A"), "a")},
         .summary = {.added = 1, .removed = 1}},
        {.name = "of equal fingerprints the first is used",
         .listing = {item("b", "A")},
         .previous = {kept(item("a", "A"), "first"), kept(item("b", "A"), "second")},
         .entries = {kept(item("b", "A"), "first")},
         .summary = {.removed = 1, .unchanged = 1}},
        {.name = "a copy of a kept file is used again",
         .listing = {item("a", "A"), item("b", "A")},
         .previous = {kept(item("a", "A"), "a")},
         .entries = {kept(item("a", "A"), "a"), kept(item("b", "A"), "a")},
         .summary = {.added = 1, .unchanged = 1}},
    };
}

std::vector<Row> downloadRows() {
    return {
        {.name = "new content at a known path counts as updated",
         .listing = {item("a", "A", "2")},
         .previous = {kept(item("a", "A"), "a")},
         .downloads = {"a"},
         .summary = {.updated = 1}},
        {.name = "a file in place of a folder counts as updated",
         .listing = {item("f", "A")},
         .previous = {folder("f")},
         .downloads = {"f"},
         .summary = {.updated = 1}},
        {.name = "a missing object is fetched again and counts as updated",
         .listing = {item("a", "A")},
         .previous = {kept(item("a", "A"), "a")},
         .downloads = {"a"},
         .summary = {.updated = 1},
         .missing = {"a"}},
        {.name = "a moved file whose object is missing counts as added",
         .listing = {item("new", "A")},
         .previous = {kept(item("old", "A"), "a")},
         .downloads = {"new"},
         .summary = {.added = 1, .removed = 1},
         .missing = {"old"}},
        {.name = "the second of equal fingerprints does not stand in for a first without its object",
         .listing = {item("b", "A")},
         .previous = {kept(item("a", "A"), "first"), kept(item("b", "A"), "second")},
         .downloads = {"b"},
         .summary = {.updated = 1, .removed = 1},
         .missing = {"a"}},
    };
}

std::vector<Row> removalRows() {
    return {
        {.name = "an empty listing removes all files and no folder",
         .previous = {kept(item("b", "B"), "b"), folder("f"), kept(item("f/a", "A"), "a")},
         .summary = {.removed = 2}},
        {.name = "a folder in place of a file removes the file",
         .listing = {folderItem("a")},
         .previous = {kept(item("a", "A"), "a")},
         .entries = {folder("a")},
         .summary = {.removed = 1}},
        {.name = "a removed folder is not counted", .previous = {folder("f")}},
    };
}

std::vector<Row> allRows() {
    std::vector<Row> rows;
    for (const auto& group : {firstRunRows(), reuseRows(), downloadRows(), removalRows()})
        rows.insert(rows.end(), group.begin(), group.end());
    return rows;
}

std::vector<Shared<SnapshotEntry>> sharedEntries(std::initializer_list<SourceEntry> sources) {
    std::vector<Shared<SnapshotEntry>> entries;
    for (const auto& source : sources)
        entries.emplace_back(SnapshotEntry{.source = source});
    return entries;
}

} // namespace

TEST(RunPlan, decidesEveryRowOfTheTable) {
    for (const auto& row : allRows()) {
        SCOPED_TRACE(row.name);
        const RunPlan plan = planned(row);
        EXPECT_EQ(plan.entries, std::vector<Shared<SnapshotEntry>>(row.entries.begin(), row.entries.end()));
        std::vector<std::string> downloads;
        for (const auto& download : plan.downloads)
            downloads.push_back(download.path.string());
        EXPECT_EQ(downloads, row.downloads);
        EXPECT_EQ(plan.summary, row.summary);
    }
}

TEST(RunPlan, carriesTheListingsRecordWhereItDiffersOutsideTheFingerprint) {
    SourceEntry old = item("old", "A|1");
    SourceEntry now = old;
    now.path = "new";
    now.id = "A";
    now.version = "1|1";
    ASSERT_EQ(old.fingerprint(), now.fingerprint()) << "fields that hold the separator";
    const RunPlan plan = planned({.name = "", .listing = {now}, .previous = {kept(old, "a")}});
    ASSERT_EQ(plan.entries.size(), 1u);
    EXPECT_EQ(plan.entries[0]->source, now);
}

TEST(RunPlan, holdsAnUnchangedEntryOnce) {
    const std::vector<Shared<SnapshotEntry>> previous{kept(item("a", "A"), "a"), folder("f")};
    const RunPlan plan =
        planRun({folderItem("f"), item("a", "A")}, previous, [](const SnapshotEntry&) { return true; });
    ASSERT_EQ(plan.entries.size(), 2u);
    EXPECT_EQ(&*plan.entries[0], &*previous[1]);
    EXPECT_EQ(&*plan.entries[1], &*previous[0]);
}

TEST(RunPlan, asksOnlyForObjectsThatItWouldUse) {
    const std::vector<Shared<SnapshotEntry>> previous{kept(item("a", "A"), "a"), kept(item("b", "B"), "b")};
    std::vector<std::string> asked;
    planRun({item("a", "A"), item("b", "B", "2")}, previous, [&](const SnapshotEntry& entry) {
        asked.push_back(entry.source.path.string());
        return true;
    });
    EXPECT_EQ(asked, std::vector<std::string>{"a"});
}

TEST(RunPlan, isStoppedByWhatThePresenceThrows) {
    const std::vector<Shared<SnapshotEntry>> previous{kept(item("a", "A"), "a")};
    const auto refuse = [](const SnapshotEntry&) -> bool { throw BackupError("a link"); };
    EXPECT_EQ(thrown<BackupError>([&] { planRun({item("a", "A")}, previous, refuse); }), "a link");
}

TEST(SameItems, areTheSameInAnyOrder) {
    const auto entries = sharedEntries({item("a", "A"), folderItem("f")});
    EXPECT_TRUE(holdsSameItems(entries, std::vector{item("a", "A"), folderItem("f")}));
    EXPECT_TRUE(holdsSameItems(entries, std::vector{folderItem("f"), item("a", "A")}));
    EXPECT_TRUE(holdsSameItems(entries, std::vector{folderItem("f"), item("a", "A"), folderItem("f")}))
        << "said twice";
    EXPECT_TRUE(holdsSameItems({}, {}));
}

TEST(SameItems, differWhenOneIsMissingOrNew) {
    const auto entries = sharedEntries({item("a", "A"), folderItem("f")});
    EXPECT_FALSE(holdsSameItems(entries, std::vector{item("a", "A")}));
    EXPECT_FALSE(holdsSameItems(entries, std::vector{item("a", "A"), item("a", "A")}));
    EXPECT_FALSE(holdsSameItems(entries, std::vector{item("a", "A"), folderItem("f"), item("b", "B")}));
    EXPECT_FALSE(holdsSameItems(entries, {}));
}

TEST(SameItems, differInEachOfTheSevenFields) {
    const auto entries = sharedEntries({item("a", "A")});
    std::vector<SourceEntry> changed(7, item("a", "A"));
    changed[0].id = "B";
    changed[1].path = "b";
    changed[2].version = "2";
    changed[3].mimeType = "text/plain";
    changed[4].size = 99;
    changed[5].md5.reset();
    changed[6].isDirectory = true;
    for (std::size_t field = 0; field < changed.size(); ++field)
        EXPECT_FALSE(holdsSameItems(entries, std::vector{changed[field]})) << field;
}

} // namespace marrowbox
