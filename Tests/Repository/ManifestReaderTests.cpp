#include "Repository/ManifestReader.h"

#include "Models/JSONFile.h"
#include "Models/JSONReader.h"
#include "Platform/Files.h"
#include "Support/SnapshotBuilder.h"
#include "Support/Spread.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>
#include <variant>

namespace marrowbox {

namespace {

using Known = std::vector<Shared<SnapshotEntry>>;
/// What a reading gives: the snapshot, or the words of its failure.
using Outcome = std::variant<Snapshot, std::string>;

/// Reads a text as a file, which lies in memory, with a reader that expects something of it.
Outcome read(std::string_view text, const Known& known, std::span<const SourceEntry> listing = {}) {
    const Descriptor file(::memfd_create("manifest", MFD_CLOEXEC));
    writeAll(file, text);
    ::lseek(file.number(), 0, SEEK_SET);
    ManifestReader reader(listing);
    reader.expect(known);
    try {
        return reader.read(file);
    } catch (const JSONDecodingError& error) {
        return error.what();
    }
}

Outcome decoded(std::string_view text) {
    try {
        return decodeJSON<Snapshot>(text);
    } catch (const JSONDecodingError& error) {
        return error.what();
    }
}

std::vector<SourceEntry> listingOf(const Snapshot& snapshot) {
    std::vector<SourceEntry> listing;
    for (const auto& entry : snapshot.entries)
        listing.push_back(entry->source);
    return listing;
}

/// Some of it known as it is, some with other content, some not at all, and more that is not there.
Known partlyKnown(const Snapshot& snapshot) {
    SnapshotEntry changed = *snapshot.entries[1];
    changed.source.version = "2";
    return {test::folder("A"),  snapshot.entries[0], changed,
            test::folder("aa"), snapshot.entries[3], test::folder("z")};
}

} // namespace

TEST(ManifestReader, readsTheSameWhateverItExpects) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    EXPECT_EQ(read(text, {}), Outcome(snapshot));
    EXPECT_EQ(read(text, snapshot.entries), Outcome(snapshot));
    EXPECT_EQ(read(text, partlyKnown(snapshot)), Outcome(snapshot));
    EXPECT_EQ(read(text, {}, listingOf(snapshot)), Outcome(snapshot));
    const Known reversed(snapshot.entries.rbegin(), snapshot.entries.rend());
    EXPECT_EQ(read(text, reversed), Outcome(snapshot));
    std::vector<SourceEntry> changed = listingOf(snapshot);
    changed[2].md5.reset();
    changed.erase(changed.begin());
    EXPECT_EQ(read(text, {}, changed), Outcome(snapshot));
    EXPECT_EQ(read(encodeJSON(snapshot, JSONStyle::compact), snapshot.entries), Outcome(snapshot));
}

TEST(ManifestReader, holdsAKnownEntryOnce) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const auto outcome = read(encodeJSON(snapshot, JSONStyle::pretty), partlyKnown(snapshot));
    const auto& entries = std::get<Snapshot>(outcome).entries;
    EXPECT_EQ(&*entries[0], &*snapshot.entries[0]);
    EXPECT_EQ(&*entries[3], &*snapshot.entries[3]);
}

TEST(ManifestReader, tellsTheContentsThatAPathHasHadApart) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    const Known contents{test::file("a", "1"), test::file("a", "2"), test::file("a", "3")};
    for (const auto& content : contents) {
        snapshot.entries = {content, test::file("b", "")};
        const auto outcome = read(encodeJSON(snapshot, JSONStyle::pretty), contents);
        ASSERT_EQ(outcome, Outcome(snapshot));
        EXPECT_EQ(&*std::get<Snapshot>(outcome).entries[0], &*content);
    }
}

TEST(ManifestReader, sharesTheTextsOfAListedItem) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    snapshot.entries = {test::file("a path of some length", "1"), test::file("another of some length", "2")};
    std::vector<SourceEntry> listing = listingOf(snapshot);
    listing[1].version = "2"; // has changed since
    const auto outcome = read(encodeJSON(snapshot, JSONStyle::pretty), {}, listing);
    ASSERT_EQ(outcome, Outcome(snapshot));
    for (std::size_t index = 0; index < listing.size(); ++index)
        EXPECT_EQ(std::get<Snapshot>(outcome).entries[index]->source.path.view().data(),
                  listing[index].path.view().data());
}

TEST(ManifestReader, takesADamagedTextAsTheDecoderDoes) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    const auto listing = listingOf(snapshot);
    for (std::size_t position = 0; position < text.size(); position += test::stepOfManyCases()) {
        const std::string cut = text.substr(0, position);
        ASSERT_EQ(read(cut, snapshot.entries), decoded(cut)) << position;
        for (const int flip : {1, 2, 16, 128}) {
            std::string damaged = text;
            damaged[position] = static_cast<char>(damaged[position] ^ flip);
            ASSERT_EQ(read(damaged, snapshot.entries), decoded(damaged)) << position << " " << flip;
            ASSERT_EQ(read(damaged, {}, listing), decoded(damaged)) << position << " " << flip;
        }
    }
}

TEST(ManifestReader, isNotMisledByATextThatClosesTheListEarly) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    const std::string firstEnd = "\n    },\n    {";
    const std::size_t place = text.find(firstEnd);
    ASSERT_NE(place, std::string::npos);
    for (const std::string& put : {"\n    }], \"more\": [{\n    },\n    {", "\n    }], \"more\": [\n    {",
                                   "\n    }, {\n    },\n    {", "\n    }\n  ], \"more\": [\n    {"}) {
        std::string other = text;
        other.replace(place, firstEnd.size(), put);
        EXPECT_EQ(read(other, snapshot.entries), decoded(other)) << put;
        EXPECT_EQ(read(other, partlyKnown(snapshot)), decoded(other)) << put;
    }
}

} // namespace marrowbox
