#include "Models/JSONFile.h"

#include "Models/Snapshot.h"
#include "Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(JSONFile, givesBackWhatWasWritten) {
    test::ScratchFolder folder;
    Snapshot snapshot;
    snapshot.id = Uuid::random();
    snapshot.entries.push_back(SnapshotEntry{{.id = "1",
                                              .path = "a/“b”\n.txt",
                                              .version = "2",
                                              .mimeType = "text/plain",
                                              .size = 3,
                                              .md5 = {"0f"}},
                                             ObjectHash(std::string(64, 'a')),
                                             3});
    JSONFile::write(snapshot, folder / "x.json");
    EXPECT_EQ(JSONFile::read<Snapshot>(folder / "x.json"), snapshot) << readFile(folder / "x.json");
}

} // namespace marrowbox
