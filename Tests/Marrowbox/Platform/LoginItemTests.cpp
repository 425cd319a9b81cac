#include "Marrowbox/Platform/LoginItem.h"
#include "Marrowbox/Platform/LoginItemSettings.h"
#include "Platform/Files.h"
#include "Support/ScratchFolder.h"
#include "Support/Stranger.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace marrowbox::test {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class LoginItemInAScratchFolder : public testing::Test {
  protected:
    void write(const std::string& text) const {
        fs::create_directories(item.entry().parent_path());
        std::ofstream(item.entry(), std::ios::binary) << text;
    }

    ScratchFolder settings;
    LoginItem item{settings.path(), "/usr/bin/marrowbox"};
};

/// What a desktop starts for an Exec value: first the escapes of texts are undone, then those of quoting.
std::string startedFor(const std::string& value) {
    std::string text;
    for (std::size_t position = 0; position < value.size(); ++position) {
        if (value[position] != '\\') {
            text += value[position];
            continue;
        }
        switch (value[++position]) {
        case 'n':
            text += '\n';
            break;
        case 't':
            text += '\t';
            break;
        case 'r':
            text += '\r';
            break;
        case '\\':
            text += '\\';
            break;
        default:
            return "an unknown escape";
        }
    }
    std::string program;
    for (std::size_t position = 1; position + 1 < text.size(); ++position) {
        if (text[position] == '\\' || text[position] == '%')
            ++position;
        program += text[position];
    }
    return program;
}

} // namespace

using LoginItems = LoginItemInAScratchFolder;

TEST_F(LoginItems, areDisabledWithoutAnEntry) {
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
}

TEST_F(LoginItems, startTheExecutableOnceEnabled) {
    item.enable();
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_EQ(readFile(settings / "autostart/marrowbox.desktop"),
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=Marrowbox\n"
              "Comment=Keeps private, versioned backups of your Google Drive\n"
              "Icon=net.marrowbox.Marrowbox\n"
              "Terminal=false\n"
              "Exec=\"/usr/bin/marrowbox\"\n"
              "X-GNOME-Autostart-enabled=true\n");
}

TEST_F(LoginItems, leaveNothingBesideTheirEntry) {
    item.enable();
    item.enable();
    EXPECT_THAT(directoryNames(settings / "autostart"), ElementsAre("marrowbox.desktop"));
    EXPECT_EQ(linkStatus(item.entry())->st_mode & 07777, 0600U);
    EXPECT_EQ(linkStatus(settings / "autostart")->st_mode & 07777, 0700U);
}

TEST_F(LoginItems, vanishWhenDisabled) {
    item.enable();
    item.disable();
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    EXPECT_FALSE(fs::exists(item.entry()));
    item.disable();
}

TEST_F(LoginItems, requireApprovalOnceTheDesktopHasSwitchedThemOff) {
    for (const std::string mark : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
        item.disable();
        item.enable();
        write(readFile(item.entry()) + mark + "\n");
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << mark;
        item.enable();
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << mark;
        EXPECT_THAT(readFile(item.entry()), HasSubstr(mark));
    }
}

TEST_F(LoginItems, readEntriesHoweverTheyAreWritten) {
    write("# a comment\r\n\r\n[Desktop Entry]\r\nExec = marrowbox\r\nHidden\t=  true \r\n");
    EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval);
    write("[Desktop Entry]\nExec=marrowbox\nHidden[de]=true\n[Desktop Action Hide]\nHidden=true\n");
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    write("[Desktop Entry]\nExec=marrowbox\nHidden=true\nHidden=false\n");
    EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval);
    write("Exec=marrowbox\n[Something Else]\nExec=marrowbox\n");
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    write(std::string("\0\xFF[[[=\n===\n[Desktop Entry]\n=\nExec=\n", 35));
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    write("");
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
}

TEST_F(LoginItems, areDisabledWhenSomethingElseLiesInTheirPlace) {
    fs::create_directories(item.entry().parent_path());
    ASSERT_EQ(::mkfifo(item.entry().c_str(), 0600), 0);
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    item.enable();
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    item.disable();
    fs::create_symlink(item.entry(), item.entry());
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    item.disable();
    fs::create_directory(item.entry());
    EXPECT_EQ(item.status(), LoginItemStatus::disabled);
    EXPECT_THROW(item.enable(), std::system_error);
    EXPECT_THROW(item.disable(), std::system_error);
}

TEST_F(LoginItems, writeThroughNoLinkAndIntoNoFileOfAnotherUser) {
    if (const auto reason = reasonForNoStranger())
        GTEST_SKIP() << *reason;
    write("[Desktop Entry]\nExec=planted\n");
    fs::permissions(item.entry(), fs::perms(0666));
    giveToStranger(item.entry());
    fs::rename(item.entry(), settings / "theirs");
    for (const bool isLink : {true, false}) {
        if (isLink)
            fs::create_symlink(settings / "theirs", item.entry());
        else
            fs::create_hard_link(settings / "theirs", item.entry());
        item.enable();
        EXPECT_EQ(linkStatus(item.entry())->st_mode, mode_t(S_IFREG | 0600));
        EXPECT_EQ(linkStatus(item.entry())->st_uid, ::geteuid());
        item.disable();
    }
    EXPECT_EQ(readFile(settings / "theirs"), "[Desktop Entry]\nExec=planted\n");
}

TEST_F(LoginItems, readNoMoreThanTheBeginningOfAHugeEntry) {
    write("[Desktop Entry]\nExec=marrowbox\n");
    fs::resize_file(item.entry(), std::uintmax_t{1} << 40);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
}

TEST(LoginEntries, quoteTheExecutableForDesktops) {
    EXPECT_EQ(execValue("/opt/My Box/marrow\"b`o$x\\50%"), R"("/opt/My Box/marrow\\"b\\`o\\$x\\\\50%%")");
    for (const std::string path :
         {"/usr/bin/marrowbox", "/a b/c", "/a\"b`c$d\\e%f\ng\th\ri", "/ä/\xFF", "/\\n\\\\/%u"})
        EXPECT_EQ(startedFor(execValue(path)), path);
}

TEST(LoginItemSettings, areThoseOfTheDesktop) {
    EXPECT_THAT(loginItemSettings("X-Cinnamon"), ElementsAre(ProgramCall{"cinnamon-settings", {"startup"}}));
    EXPECT_THAT(loginItemSettings("ubuntu:GNOME"),
                ElementsAre(ProgramCall{"gnome-session-properties", {}}, ProgramCall{"gnome-tweaks", {}}));
    EXPECT_TRUE(loginItemSettings("").empty());
    EXPECT_TRUE(loginItemSettings("::unheard:of:").empty());
}

} // namespace marrowbox::test
