// What the real rclone does with our services, as its users know it to do with Google's.
#include "Platform/Files.h"
#include "Rclone.h"
#include "Sandbox/Exports.h"

#include <gmock/gmock.h>

namespace marrowbox::test {
namespace {

using namespace sandbox;
using testing::ElementsAre;

struct RcloneOnSandbox : testing::Test {
    SandboxServer sandbox;
    Rclone rclone{sandbox};
    Drive& drive = sandbox.drive();

    std::string fetched(const std::string& name) { return readFile(rclone.folder() / name); }
};

TEST_F(RcloneOnSandbox, fetchesABinaryFileAndAnEmptyOne) {
    const Content content = Content::pattern(7, 300'001);
    const std::string binary = drive.addFile("root", "photo.jpg", content);
    const std::string empty = drive.addFile("root", "empty", "");

    EXPECT_EQ(rclone.copy({{binary, "a"}, {empty, "b"}}), 0) << rclone.complaint();

    EXPECT_EQ(fetched("a"), content.bytes());
    EXPECT_EQ(fetched("b"), "");
    EXPECT_THAT(sandbox.requests().lines(),
                ElementsAre("GET /drive/v3/files/root", "GET /drive/v3/files/" + binary,
                            "GET /drive/v3/files/" + binary, "GET /drive/v3/files/" + empty,
                            "GET /drive/v3/files/" + empty));
    EXPECT_THAT(sandbox.failures(), ElementsAre());
}

TEST_F(RcloneOnSandbox, exportsNativeDocumentsInTheirFourFormats) {
    const std::vector<std::pair<NativeKind, std::string>> kinds{{NativeKind::document, "docx"},
                                                                {NativeKind::spreadsheet, "xlsx"},
                                                                {NativeKind::presentation, "pptx"},
                                                                {NativeKind::drawing, "svg"}};
    std::vector<std::pair<std::string, std::string>> items;
    for (const auto& [kind, extension] : kinds)
        items.emplace_back(drive.addNative("root", "Plan", kind, "words " + extension), "plan." + extension);

    EXPECT_EQ(rclone.copy(items), 0) << rclone.complaint();

    for (const auto& [id, name] : items) {
        const DriveItem item = drive.item(id).value();
        const ExportFormat* format = exportFormat(item, name.substr(5));
        EXPECT_EQ(fetched(name), exported(item, *format).bytes());
    }
    EXPECT_EQ(sandbox.requests().count(withPath("/drive/v3/about")), 1);
    EXPECT_EQ(sandbox.requests().count(toHost("docs.google.com")), 4);
}

TEST_F(RcloneOnSandbox, fetchesFromASharedDriveWithoutAskingForTheRoot) {
    const std::string shared = drive.addSharedDrive("Team");
    const std::string file = drive.addFile(shared, "a.txt", "team");
    rclone.setTeamDrive(shared);

    EXPECT_EQ(rclone.copy({{file, "a.txt"}}), 0) << rclone.complaint();

    EXPECT_EQ(fetched("a.txt"), "team");
    EXPECT_EQ(sandbox.requests().count(metadata("root")), 0);
}

} // namespace
} // namespace marrowbox::test
