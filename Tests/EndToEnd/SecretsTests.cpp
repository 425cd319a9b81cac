// Where the tokens and the client's secret are while a backup runs: where everybody may look, nowhere.
#include "GoogleBackup.h"
#include "Models/BackupError.h"
#include "Platform/CoreDumps.h"
#include "Platform/Files.h"
#include "Sandbox/Fault.h"
#include "Sandbox/RequestMatch.h"
#include "Support/Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marrowbox {

namespace {

using namespace sandbox;
using test::GoogleBackup;
using test::thrown;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

/// What the system tells of a process.
struct SeenProcess {
    std::string arguments;
    std::string limits;
    unsigned environmentMode = 0;
};

bool isChild(const std::string& process) {
    return readFile("/proc/" + process + "/status").find("\nPPid:\t" + std::to_string(::getpid()) + "\n") !=
           std::string::npos;
}

std::optional<SeenProcess> seenChild(const std::string& process) {
    try {
        if (!isChild(process))
            return std::nullopt;
        const std::string place = "/proc/" + process;
        struct stat environment{};
        if (::stat((place + "/environ").c_str(), &environment) != 0)
            return std::nullopt;
        return SeenProcess{readFile(place + "/cmdline"), readFile(place + "/limits"),
                           environment.st_mode & 0777};
    } catch (const std::system_error&) {
        return std::nullopt; // it has ended meanwhile
    }
}

std::vector<SeenProcess> seenChildren() {
    std::vector<SeenProcess> children;
    for (const std::string& name : directoryNames("/proc"))
        if (name.find_first_not_of("0123456789") == std::string::npos)
            if (const auto child = seenChild(name))
                children.push_back(*child);
    return children;
}

/// The contents of all files that everybody on the way might read: all but the credentials.
std::map<std::string, std::string> filesAround(const GoogleBackup& backup) {
    std::map<std::string, std::string> files;
    for (const auto& found : fs::recursive_directory_iterator(backup.place()))
        if (found.is_regular_file() && found.path().filename() != "credentials.json")
            files.emplace(found.path(), readFile(found.path()));
    return files;
}

void expectHoldsNone(const std::string& text, const std::vector<std::string>& secrets) {
    for (const std::string& secret : secrets)
        EXPECT_THAT(text, Not(HasSubstr(secret)));
}

} // namespace

TEST(Secrets, standInNoArgumentOfRcloneAndInNoFileBesideTheCredentials) {
    forbidCoreDumps(); // as the program does when it begins
    GoogleBackup backup;
    const std::string file = backup.drive.addFile(backup.folder, "file", "content");
    std::vector<SeenProcess> children;
    std::map<std::string, std::string> files;
    backup.sandbox.inject(Fault::on(media(file)).run([&] {
        children = seenChildren();
        files = filesAround(backup);
    }));
    backup.expectHolds(backup.run(), {"file"});
    files.merge(filesAround(backup));

    ASSERT_THAT(children, SizeIs(1));
    EXPECT_THAT(children[0].arguments, HasSubstr(std::string("backend\0copyid\0", 15)));
    EXPECT_THAT(children[0].limits, ContainsRegex("Max core file size +1 +1 "));
    EXPECT_EQ(children[0].environmentMode, 0400U);
    expectHoldsNone(children[0].arguments, backup.secrets());
    EXPECT_GT(files.size(), 4U);
    for (const auto& [name, content] : files) {
        SCOPED_TRACE(name);
        expectHoldsNone(content, backup.secrets());
    }
}

TEST(Secrets, standInNoSentenceThoughTheServiceRepeatsThem) {
    GoogleBackup backup;
    const std::string file = backup.drive.addFile(backup.folder, "file", "content");
    std::string echo;
    for (const std::string& secret : backup.secrets())
        echo += secret + " ";
    for (const unsigned status : {400U, 401U, 403U, 404U}) {
        for (const RequestMatch& match : {metadata(backup.folder), listing(backup.folder), media(file)}) {
            backup.sandbox.clearFaults();
            backup.sandbox.inject(
                Fault::on(match).answer(status).reason(echo).body(echo).header("X-Echo", echo).always());
            expectHoldsNone(backup.refusal(), backup.secrets());
        }
    }
}

TEST(Secrets, standInNoSentenceOfARenewalThatFails) {
    GoogleBackup backup;
    backup.drive.addFile(backup.folder, "file", "content");
    backup.connect(std::chrono::seconds(60)); // so that it is renewed
    std::string echo;
    for (const std::string& secret : backup.secrets())
        echo += secret + " ";
    const auto failure = [&](Fault fault) {
        backup.sandbox.clearFaults();
        backup.sandbox.inject(std::move(fault));
        return thrown<std::exception>([&] { backup.run(); });
    };
    expectHoldsNone(failure(Fault::on(tokenCall()).answer(400).body(echo)), backup.secrets());
    expectHoldsNone(failure(Fault::on(tokenCall()).body(echo)), backup.secrets());
    expectHoldsNone(failure(Fault::on(tokenCall()).body("{\"access_token\":\"" + echo + "\"}")),
                    backup.secrets());
    expectHoldsNone(failure(Fault::on(tokenCall()).body("{\"access_token\":[\"" + echo + "\"]}")),
                    backup.secrets());
    expectHoldsNone(failure(Fault::on(tokenCall()).cutBeforeAnswer()), backup.secrets());
    backup.expectSettled(0);
}

} // namespace marrowbox
