#include "Repository/ManifestSuccession.h"

#include "Models/JSONFile.h"
#include "Models/JSONReader.h"
#include "Platform/Files.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Spread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace marrowbox {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Entries = std::vector<Shared<SnapshotEntry>>;
using Reading = ManifestSuccession::Reading;

/// A text as a file, which lies in memory.
Descriptor fileOf(std::string_view text) {
    Descriptor file(::memfd_create("manifest", MFD_CLOEXEC));
    writeAll(file, text);
    ::lseek(file.number(), 0, SEEK_SET);
    return file;
}

std::string textOf(const Entries& entries) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    snapshot.entries = entries;
    return encodeJSON(snapshot, JSONStyle::pretty);
}

std::optional<Snapshot> decodedIfWhole(std::string_view text) {
    try {
        return decodeJSON<Snapshot>(text);
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
}

std::optional<Reading> read(ManifestSuccession& succession, std::string_view text) {
    return succession.read(fileOf(text));
}

Snapshot whole(const Reading& reading) {
    Snapshot snapshot = reading.record;
    for (const SnapshotEntry* entry : reading.entries)
        snapshot.entries.emplace_back(*entry);
    return snapshot;
}

const Entries three{test::file("a", "1"), test::file("b", "2"), test::file("c", "3")};

} // namespace

TEST(ManifestSuccession, readsTheFirstManifestByItself) {
    ManifestSuccession succession;
    const auto reading = read(succession, textOf(three));
    ASSERT_TRUE(reading);
    EXPECT_EQ(whole(*reading), *decodedIfWhole(textOf(three)));
    EXPECT_THAT(reading->others, ElementsAre(0, 1, 2));
    EXPECT_FALSE(reading->hasSameItems);
}

TEST(ManifestSuccession, takesWhatStandsAsItStoodBefore) {
    ManifestSuccession succession;
    const auto first = read(succession, textOf(three));
    const auto second = read(succession, textOf(three));
    ASSERT_TRUE(second);
    EXPECT_EQ(whole(*second), whole(*first));
    EXPECT_EQ(second->entries[2], first->entries[2]);
    EXPECT_THAT(second->others, IsEmpty());
    EXPECT_TRUE(second->hasSameItems);
}

TEST(ManifestSuccession, tellsWhatIsOtherwise) {
    const struct {
        const char* name;
        Entries entries;
        std::vector<std::size_t> others;
        bool hasSameItems;
    } rows[] = {
        {"changed first", {test::file("a", "x"), three[1], three[2]}, {0}, true},
        {"changed last", {three[0], three[1], test::file("c", "x")}, {2}, true},
        {"all changed", {test::file("a", "x"), test::file("b", "x"), test::file("c", "x")}, {0, 1, 2}, true},
        {"added first", {test::file("0", "0"), three[0], three[1], three[2]}, {0}, false},
        {"added last", {three[0], three[1], three[2], test::file("d", "4")}, {3}, false},
        {"removed first", {three[1], three[2]}, {0}, false},
        {"removed last", {three[0], three[1]}, {}, false},
        {"replaced", {three[0], test::file("bb", "2"), three[2]}, {1}, false},
        {"a folder now", {three[0], test::folder("b"), three[2]}, {1}, false},
        {"in another order", {three[2], three[0], three[1]}, {0, 1, 2}, false},
        {"twice", {three[0], three[0], three[1], three[2]}, {1}, false},
    };
    for (const auto& row : rows) {
        ManifestSuccession succession;
        read(succession, textOf(three));
        const auto reading = read(succession, textOf(row.entries));
        ASSERT_TRUE(reading) << row.name;
        EXPECT_EQ(whole(*reading), *decodedIfWhole(textOf(row.entries))) << row.name;
        EXPECT_EQ(reading->others, row.others) << row.name;
        EXPECT_EQ(reading->hasSameItems, row.hasSameItems) << row.name;
        const auto again = read(succession, textOf(row.entries));
        EXPECT_THAT(again->others, IsEmpty()) << row.name;
    }
}

TEST(ManifestSuccession, readsEveryDamagedTextAsTheDecoderDoesOrNotAtAll) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    std::size_t readCount = 0;
    for (std::size_t position = 0; position < text.size(); position += test::stepOfManyCases())
        for (const int flip : {0, 1, 2, 16, 128}) {
            std::string damaged = flip == 0 ? text.substr(0, position) : text;
            if (flip != 0)
                damaged[position] = static_cast<char>(damaged[position] ^ flip);
            ManifestSuccession succession;
            ASSERT_TRUE(read(succession, text));
            const auto reading = read(succession, damaged);
            if (!reading)
                continue;
            ++readCount;
            ASSERT_EQ(whole(*reading), decodedIfWhole(damaged)) << position << " " << flip;
        }
    EXPECT_GT(readCount, 0U);
}

TEST(ManifestSuccession, isNotMisledByATextThatClosesTheListEarly) {
    const std::string text = textOf(three);
    const std::string firstEnd = "\n    },\n    {";
    const std::size_t place = text.find(firstEnd);
    ASSERT_NE(place, std::string::npos);
    for (const std::string& put : {"\n    }], \"more\": [{\n    },\n    {", "\n    }], \"more\": [\n    {",
                                   "\n    }, {\n    },\n    {", "\n    }\n  ], \"more\": [\n    {"}) {
        std::string other = text;
        other.replace(place, firstEnd.size(), put);
        ManifestSuccession succession;
        read(succession, text);
        const auto reading = read(succession, other);
        if (reading)
            EXPECT_EQ(whole(*reading), decodedIfWhole(other)) << put;
    }
}

TEST(ManifestSuccession, leavesWhatIsNotWrittenInThisFormToOthersAndGoesOnBehindIt) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string compact = encodeJSON(snapshot, JSONStyle::compact);
    ManifestSuccession succession;
    const Descriptor file = fileOf(compact);
    EXPECT_FALSE(succession.read(file));
    EXPECT_EQ(readAll(file), compact) << "the file is at its start again";
    const auto reading = read(succession, textOf(three));
    ASSERT_TRUE(reading);
    EXPECT_THAT(reading->others, SizeIs(3)) << "it is compared with nothing";
}

TEST(ManifestSuccession, leavesATextThatIsTooLargeToOthers) {
    const Descriptor file(::memfd_create("manifest", MFD_CLOEXEC));
    ASSERT_EQ(::ftruncate(file.number(), std::int64_t(33) << 20), 0);
    EXPECT_FALSE(ManifestSuccession().read(file));
}

} // namespace marrowbox
