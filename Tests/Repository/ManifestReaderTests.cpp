#include "Repository/ManifestReader.h"

#include "Models/JSONFile.h"
#include "Models/JSONReader.h"
#include "Support/ScratchFolder.h"
#include "Support/SnapshotBuilder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <variant>

namespace marrowbox {

namespace {

using Known = std::vector<Shared<SnapshotEntry>>;
/// What a reading gives: the snapshot, or the words of its failure.
using Outcome = std::variant<Snapshot, std::string>;

/// A text as a file with a reader that expects something of it.
class ManifestText {
  public:
    Outcome read(std::string_view text, const Known& known, std::span<const SourceEntry> listing = {}) {
        writeAll(openFile(path_, O_WRONLY | O_CREAT | O_TRUNC, 0600), text);
        ManifestReader reader(listing);
        reader.expect(known);
        try {
            return reader.read(openFile(path_, O_RDONLY));
        } catch (const JSONDecodingError& error) {
            return error.what();
        }
    }

  private:
    test::ScratchFolder folder_;
    fs::path path_ = folder_ / "x.json";
};

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
    ManifestText file;
    EXPECT_EQ(file.read(text, {}), Outcome(snapshot));
    EXPECT_EQ(file.read(text, snapshot.entries), Outcome(snapshot));
    EXPECT_EQ(file.read(text, partlyKnown(snapshot)), Outcome(snapshot));
    EXPECT_EQ(file.read(text, {}, listingOf(snapshot)), Outcome(snapshot));
    const Known reversed(snapshot.entries.rbegin(), snapshot.entries.rend());
    EXPECT_EQ(file.read(text, reversed), Outcome(snapshot));
    std::vector<SourceEntry> changed = listingOf(snapshot);
    changed[2].md5.reset();
    changed.erase(changed.begin());
    EXPECT_EQ(file.read(text, {}, changed), Outcome(snapshot));
    EXPECT_EQ(file.read(encodeJSON(snapshot, JSONStyle::compact), snapshot.entries), Outcome(snapshot));
}

TEST(ManifestReader, holdsAKnownEntryOnce) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    ManifestText file;
    const auto outcome = file.read(encodeJSON(snapshot, JSONStyle::pretty), partlyKnown(snapshot));
    const auto& entries = std::get<Snapshot>(outcome).entries;
    EXPECT_EQ(&*entries[0], &*snapshot.entries[0]);
    EXPECT_EQ(&*entries[3], &*snapshot.entries[3]);
}

TEST(ManifestReader, tellsTheContentsThatAPathHasHadApart) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    const Known contents{test::file("a", "1"), test::file("a", "2"), test::file("a", "3")};
    for (const auto& content : contents) {
        snapshot.entries = {content, test::file("b", "")};
        ManifestText file;
        const auto outcome = file.read(encodeJSON(snapshot, JSONStyle::pretty), contents);
        ASSERT_EQ(outcome, Outcome(snapshot));
        EXPECT_EQ(&*std::get<Snapshot>(outcome).entries[0], &*content);
    }
}

TEST(ManifestReader, sharesTheTextsOfAListedItem) {
    Snapshot snapshot = test::snapshotOfManyKinds();
    snapshot.entries = {test::file("a path of some length", "1"), test::file("another of some length", "2")};
    std::vector<SourceEntry> listing = listingOf(snapshot);
    listing[1].version = "2"; // has changed since
    ManifestText file;
    const auto outcome = file.read(encodeJSON(snapshot, JSONStyle::pretty), {}, listing);
    ASSERT_EQ(outcome, Outcome(snapshot));
    for (std::size_t index = 0; index < listing.size(); ++index)
        EXPECT_EQ(std::get<Snapshot>(outcome).entries[index]->source.path.view().data(),
                  listing[index].path.view().data());
}

TEST(ManifestReader, takesADamagedTextAsTheDecoderDoes) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    const auto listing = listingOf(snapshot);
    ManifestText file;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const std::string cut = text.substr(0, position);
        ASSERT_EQ(file.read(cut, snapshot.entries), decoded(cut)) << position;
        for (const int flip : {1, 2, 16, 128}) {
            std::string damaged = text;
            damaged[position] = static_cast<char>(damaged[position] ^ flip);
            ASSERT_EQ(file.read(damaged, snapshot.entries), decoded(damaged)) << position << " " << flip;
            ASSERT_EQ(file.read(damaged, {}, listing), decoded(damaged)) << position << " " << flip;
        }
    }
}

TEST(ManifestReader, isNotMisledByATextThatClosesTheListEarly) {
    const Snapshot snapshot = test::snapshotOfManyKinds();
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    const std::string firstEnd = "\n    },\n    {";
    const std::size_t place = text.find(firstEnd);
    ASSERT_NE(place, std::string::npos);
    ManifestText file;
    for (const std::string& put : {"\n    }], \"more\": [{\n    },\n    {", "\n    }], \"more\": [\n    {",
                                   "\n    }, {\n    },\n    {", "\n    }\n  ], \"more\": [\n    {"}) {
        std::string other = text;
        other.replace(place, firstEnd.size(), put);
        EXPECT_EQ(file.read(other, snapshot.entries), decoded(other)) << put;
        EXPECT_EQ(file.read(other, partlyKnown(snapshot)), decoded(other)) << put;
    }
}

} // namespace marrowbox
