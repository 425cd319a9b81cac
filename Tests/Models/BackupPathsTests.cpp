#include "Models/BackupPaths.h"

#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"
#include "Support/Spread.h"
#include "Support/Thrown.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace marrowbox {

namespace {

using Entries = std::vector<SourceEntry>;
using test::thrown;

SourceEntry file(std::string_view path) {
    return {.id = "id", .path = path, .version = {}, .mimeType = {}, .md5 = {}};
}
SourceEntry folder(std::string_view path) {
    SourceEntry entry = file(path);
    entry.isDirectory = true;
    return entry;
}

std::string unsafe(std::string_view path) {
    return "Unsafe path in backup: " + std::string(path);
}
std::string collision(std::string_view path) {
    return "Two Google Drive items map to “" + std::string(path) +
           "”. Rename one in Drive before backing up.";
}
std::string conflict(std::string_view path) {
    return "A file and folder conflict at “" + std::string(path) + "”.";
}

/// The sentence of a refusal; empty when the entries pass.
template <typename Entry>
std::string verdictOn(const std::vector<Entry>& entries) {
    try {
        BackupPaths::validateEntries(entries);
    } catch (const BackupError& error) {
        return error.message();
    }
    return {};
}

std::string verdict(const Entries& entries) {
    return verdictOn(entries);
}

std::vector<Shared<SnapshotEntry>> snapshotEntries(const Entries& entries) {
    std::vector<Shared<SnapshotEntry>> shared;
    for (const SourceEntry& entry : entries)
        shared.push_back(SnapshotEntry{.source = entry, .objectHash = {}});
    return shared;
}

/// Splits at each "/" and keeps empty pieces.
std::vector<std::string> pieces(const std::string& path) {
    std::vector<std::string> split(1);
    for (const char byte : path) {
        if (byte == '/')
            split.emplace_back();
        else
            split.back() += byte;
    }
    return split;
}

bool isUnsafe(const std::string& path) {
    for (const std::string& piece : pieces(path))
        if (piece.empty() || piece == "." || piece == "..")
            return true;
    return path.find('\0') != std::string::npos;
}

/// The keys of all folders above a path.
std::set<std::string> keysAbove(const std::string& path) {
    std::set<std::string> keys;
    std::string above;
    for (const std::string& piece : pieces(path)) {
        if (!above.empty())
            keys.insert(collisionKey(above));
        above += above.empty() ? piece : "/" + piece;
    }
    return keys;
}

/// The rules word by word, with sets of texts.
std::string verdictByTheBook(const Entries& entries) {
    std::set<std::string> keys;
    std::set<std::string> files;
    for (const SourceEntry& entry : entries) {
        const std::string path = entry.path.string();
        if (isUnsafe(path))
            return unsafe(path);
        if (!keys.insert(collisionKey(path)).second)
            return collision(path);
        if (!entry.isDirectory)
            files.insert(collisionKey(path));
    }
    for (const SourceEntry& entry : entries)
        for (const std::string& key : keysAbove(entry.path.string()))
            if (files.contains(key))
                return conflict(entry.path.view());
    return {};
}

/// Makes small sets of paths in which all rules meet often.
class RandomPaths {
  public:
    explicit RandomPaths(unsigned seed) : random_(seed) {}

    Entries entries() {
        Entries made;
        const std::size_t count = below(8);
        for (std::size_t index = 0; index < count; ++index)
            made.push_back(below(3) == 0 ? folder(path()) : file(path()));
        if (below(2) == 0)
            std::ranges::sort(made, {}, &SourceEntry::path);
        return made;
    }

  private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    std::string path() {
        std::string made = piece();
        for (std::size_t more = below(4); more > 0; --more)
            made += "/" + piece();
        return made;
    }

    std::string piece() {
        constexpr std::array<std::string_view, 16> safe = {
            "a",      "A", "b", "ä",       "a\u0308",       "Ä",  "A\u0308", "ΟΔΟΣ",
            "\u1E9E", "ß", "İ", "i\u0307", "a longer name", "…b", "\u0308a", "b\xFF"};
        constexpr std::array<std::string_view, 4> rare = {"", ".", "..", std::string_view("a\0b", 3)};
        return std::string(below(60) == 0 ? rare[below(rare.size())] : safe[below(safe.size())]);
    }

    std::mt19937 random_;
};

} // namespace

TEST(BackupPaths, refusesUnsafePaths) {
    for (const char* path :
         {"", "/", "/a", "a/", "a//b", ".", "..", "./a", "../a", "a/./b", "a/..", "a/../b"})
        EXPECT_EQ(thrown<BackupError>([&] { BackupPaths::validate(path); }), unsafe(path)) << path;
}

TEST(BackupPaths, refusesANulCharacter) {
    for (const std::string_view path : {std::string_view("a\0b", 3), std::string_view("a/\0", 3)}) {
        EXPECT_EQ(verdict({file(path)}), unsafe(path)) << "the whole path is told";
        EXPECT_THROW(BackupPaths::validate(path), BackupError);
    }
}

TEST(BackupPaths, takesNamesThatBeginOrEndWithDots) {
    for (const char* path : {"a", "a/b/c", "..a", "a..", "...", "a/...", ".a/b.", " ", "a\\b", "Grüße/ä"})
        EXPECT_NO_THROW(BackupPaths::validate(path)) << path;
}

TEST(BackupPaths, takesAnEmptyList) {
    EXPECT_EQ(verdict({}), "");
}

TEST(BackupPaths, takesAnOrdinaryTree) {
    EXPECT_EQ(verdict({folder("a"), file("a/b"), folder("a/c"), file("a/c/d"), file("a b"), file("b")}), "");
}

TEST(BackupPaths, refusesAnUnsafeEntry) {
    EXPECT_EQ(verdict({file("a"), file("b/../c")}), unsafe("b/../c"));
}

TEST(BackupPaths, quotesTheLaterOfTwoThatDifferInCase) {
    EXPECT_EQ(verdict({file("Report.txt"), file("other"), file("REPORT.txt")}), collision("REPORT.txt"));
}

TEST(BackupPaths, refusesComposedBesideDecomposedAccents) {
    EXPECT_EQ(verdict({file("Z\u00FCrich"), file("Zu\u0308rich")}), collision("Zu\u0308rich"));
}

TEST(BackupPaths, refusesFoldersThatDifferInCase) {
    EXPECT_EQ(verdict({folder("Photos"), folder("photos")}), collision("photos"));
}

TEST(BackupPaths, refusesAFileAboveAnotherItem) {
    EXPECT_EQ(verdict({file("a"), file("a/b/c")}), conflict("a/b/c"));
    EXPECT_EQ(verdict({file("a"), folder("a/b")}), conflict("a/b"));
}

TEST(BackupPaths, refusesAFileAboveAnItemSpelledInAnotherCase) {
    EXPECT_EQ(verdict({file("x/B"), file("x/b/c")}), conflict("x/b/c"));
}

TEST(BackupPaths, callsAFileAndAFolderOfOnePathACollision) {
    EXPECT_EQ(verdict({file("a/b"), folder("a/b")}), collision("a/b"));
}

TEST(BackupPaths, reportsTheFirstFailureOfTheListAmongUnsafeAndColliding) {
    EXPECT_EQ(verdict({file("a"), file("A"), file("../b")}), collision("A"));
    EXPECT_EQ(verdict({file("a"), file("../b"), file("A")}), unsafe("../b"));
}

TEST(BackupPaths, looksForConflictsOnlyWhenNothingCollides) {
    EXPECT_EQ(verdict({file("a"), file("a/b"), file("c"), file("C")}), collision("C"));
}

TEST(BackupPaths, quotesTheFirstEntryOfTheListBelowAFile) {
    EXPECT_EQ(verdict({file("a/b/c"), folder("a/b"), file("a")}), conflict("a/b/c"));
    EXPECT_EQ(verdict({folder("a/b"), file("a/b/c"), file("a")}), conflict("a/b"));
}

TEST(BackupPaths, judgesSnapshotEntriesByTheSameRules) {
    EXPECT_EQ(verdictOn(snapshotEntries({file("a"), file("a/b")})), conflict("a/b"));
    EXPECT_EQ(verdictOn(snapshotEntries({folder("a"), file("a/b")})), "");
}

TEST(BackupPaths, agreesWithTheRulesWordByWord) {
    RandomPaths random(2026);
    const std::size_t rounds = 20'000 / test::stepOfManyCases();
    std::size_t refused = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        const Entries entries = random.entries();
        const std::string expected = verdictByTheBook(entries);
        ASSERT_EQ(verdict(entries), expected);
        ASSERT_EQ(verdictOn(snapshotEntries(entries)), expected);
        refused += expected.empty() ? 0 : 1;
    }
    EXPECT_GT(refused, rounds / 10);
    EXPECT_LT(refused, rounds - rounds / 10);
}

TEST(BackupPaths, findsOneCollisionAmongManyEntries) {
    Entries entries;
    for (int index = 0; index < 50'000; ++index)
        entries.push_back(file("folder " + std::to_string(index / 100) + "/file " + std::to_string(index)));
    EXPECT_EQ(verdict(entries), "");
    entries.push_back(file("Folder 250/FILE 25000"));
    EXPECT_EQ(verdict(entries), collision("Folder 250/FILE 25000"));
    entries.back() = file("folder 7/file 777/x");
    EXPECT_EQ(verdict(entries), conflict("folder 7/file 777/x"));
}

} // namespace marrowbox
