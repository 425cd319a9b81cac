// What is set for the whole program: the OAuth client, accounts, email, the start with the session.
#include "FlowWorld.h"

#include "Platform/Files.h"

#include <fstream>

namespace marrowbox {

using test::Flow;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class FlowOfSettings : public Flow {
  protected:
    /// The client file of another project, as a person downloads it.
    fs::path clientOf(const std::string& project) {
        sandbox::ClientIdentity client = google.identity().client();
        client.project = project;
        fs::path file = computer.folder("Downloads") / "client_secret.json";
        std::ofstream(file) << client.fileText();
        return file;
    }
    void openSettings(const QString& tab) {
        user.press(Qt::Key_Comma, Qt::ControlModifier);
        EXPECT_TRUE(user.comesToShow("Settings section"));
        user.click(tab);
    }
    void leaveSettings() {
        user.click("Done");
        EXPECT_TRUE(user.ceasesToShow("Settings section"));
    }
};

} // namespace

TEST_F(FlowOfSettings, openFromTheSidebarAndGoByEscape) {
    startProgram();
    user.click("Settings");
    EXPECT_TRUE(user.comesToShow("Settings section"));
    user.press(Qt::Key_Escape);
    EXPECT_TRUE(user.ceasesToShow("Settings section"));
    user.click("Settings");
    EXPECT_TRUE(user.comesToShow("Settings section"));
    leaveSettings();
}

TEST_F(FlowOfSettings, takeAClientFileAndGoBackToTheBuiltInOne) {
    startProgram();
    openSettings("General");
    user.click("Developer connection");
    EXPECT_TRUE(user.comesToShow("Built in"));
    EXPECT_TRUE(user.shows("marrowbox-sandbox"));
    choose(clientOf("adas-own-project"));
    user.click("Import Desktop OAuth JSON…");
    EXPECT_TRUE(user.ceasesToShow("Built in"));
    EXPECT_TRUE(user.shows("adas-own-project"));
    EXPECT_TRUE(configuration().usesImportedClient);
    EXPECT_TRUE(fs::exists(computer.dataFolder() / "GoogleOAuth.json"));
    user.click("Use the built-in client");
    EXPECT_TRUE(user.comesToShow("Built in"));
    EXPECT_TRUE(user.shows("marrowbox-sandbox"));
    EXPECT_FALSE(configuration().usesImportedClient);
}

TEST_F(FlowOfSettings, refuseAFileThatIsNoClient) {
    startProgram();
    openSettings("General");
    user.click("Developer connection");
    const fs::path file = computer.folder("Downloads") / "holiday.json";
    std::ofstream(file) << "{\"beach\": true}";
    choose(file);
    user.click("Import Desktop OAuth JSON…");
    EXPECT_TRUE(user.comesToShow("A little attention needed"));
    user.click("OK");
    EXPECT_TRUE(user.ceasesToShow("A little attention needed"));
    EXPECT_TRUE(user.shows("Built in"));
    EXPECT_FALSE(fs::exists(computer.dataFolder() / "GoogleOAuth.json"));
}

TEST_F(FlowOfSettings, leadAUserOfABuildWithoutAClientToTheirOwn) {
    bringsClient = false;
    startProgram();
    choose(clientOf("adas-own-project"));
    user.click("Connect Google account");
    EXPECT_TRUE(comesToBeWritten([](const auto& written) { return written.usesImportedClient; }));
    connectAccount();
    EXPECT_EQ(configuration().accounts.at(0).email, "ada@example.com");
}

TEST_F(FlowOfSettings, setEmailUpAndARunIsMailed) {
    const std::string letters = google.drive().addFolder("root", "Letters");
    google.drive().addFile(letters, "Hello.txt", "Dear Ada,\n", "text/plain");
    startProgram();
    connectAccount();
    makeBackup("Letters");
    openSettings("Email");
    pick("Send summaries with", "Gmail");
    pick("Google account", "ada@example.com");
    fill("Send to", "nobody");
    user.click("Allow Gmail to send summaries…");
    allow();
    // The button is named otherwise while the browser is open, and goes when the account may send.
    EXPECT_TRUE(comesToBeWritten([](const auto& written) { return written.accounts.at(0).canSendEmail; }));
    EXPECT_TRUE(user.ceasesToShow("Allow Gmail to send summaries…"));
    EXPECT_EQ(user.textIn("Send to"), "nobody");
    user.click("Save email settings");
    EXPECT_TRUE(user.comesToShow("Enter a valid recipient email address."));
    EXPECT_EQ(configuration().email.provider, EmailProvider::disabled);
    fill("Send to", "ada@example.com");
    user.click("Save email settings");
    EXPECT_TRUE(user.comesToShow("Saved"));
    leaveSettings();
    EXPECT_THAT(google.mail(), IsEmpty());
    user.click("Back up Letters");
    EXPECT_TRUE(user.comesTo([this] { return google.mail().size() == 1; }));
    EXPECT_THAT(google.mail().at(0).mime, HasSubstr("To: ada@example.com"));
    EXPECT_TRUE(comesToBeWritten([](const auto& written) { return written.runs.at(0).emailSent; }));
}

TEST_F(FlowOfSettings, leadFromABackupsOwnToTheEmailOfAll) {
    google.drive().addFolder("root", "Letters");
    startProgram();
    connectAccount();
    makeBackup("Letters");
    user.click("Backup settings");
    user.click("Open Settings → Email");
    EXPECT_TRUE(user.comesToShow("Send summaries with"));
    EXPECT_FALSE(user.shows("Frequency"));
}

TEST_F(FlowOfSettings, connectAnAccountAndDisconnectIt) {
    startProgram();
    openSettings("Accounts");
    user.click("Connect Google account");
    allow();
    EXPECT_TRUE(user.comesToShow("Actions for ada@example.com"));
    EXPECT_EQ(user.description("ada@example.com"), "Drive backup");
    user.click("Actions for ada@example.com");
    user.click("Enable Gmail sending…");
    allow();
    EXPECT_TRUE(user.comesTo(
        [this] { return user.description("ada@example.com") == "Drive backup · Gmail sending"; }));
    user.click("Actions for ada@example.com");
    EXPECT_FALSE(user.shows("Enable Gmail sending…"));
    user.click("Disconnect");
    EXPECT_TRUE(user.comesToShow("A little attention needed")); // it sends the mail
    user.click("OK");
    EXPECT_EQ(configuration().accounts.size(), 1U);
}

TEST_F(FlowOfSettings, startTheProgramWithTheSession) {
    startProgram();
    openSettings("General");
    const fs::path entry = computer.settingsFolder() / "autostart/marrowbox.desktop";
    EXPECT_FALSE(user.isChecked("Start Marrowbox at login"));
    user.click("Start Marrowbox at login");
    EXPECT_TRUE(user.comesTo([this] { return user.isChecked("Start Marrowbox at login"); }));
    EXPECT_TRUE(fs::exists(entry));
    user.click("Start Marrowbox at login");
    EXPECT_TRUE(user.comesTo([this] { return !user.isChecked("Start Marrowbox at login"); }));
    EXPECT_FALSE(fs::exists(entry));
}

} // namespace marrowbox
