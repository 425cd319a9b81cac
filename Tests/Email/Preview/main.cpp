// Writes the mails that the program sends, as HTML files, into the folder that it is given. The script beside
// this file turns them into pictures for a person to look at.

#include "Email/EmailMessage.h"
#include "RunBuilder.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace marrowbox {

namespace {

using test::morning;

RunRecord someRun() {
    RunRecord run = test::successfulRun();
    run.unitName = "Family photos & “letters”";
    run.accountEmail = "ada.lovelace@example.com";
    return run;
}

RunRecord unchangedRun() {
    RunRecord run = someRun();
    run.summary = {.unchanged = 4227};
    run.missedRuns = 2;
    return run;
}

RunRecord failedRun() {
    RunRecord run = someRun();
    run.outcome = RunOutcome::failed;
    run.detail = "The destination is not connected. Connect “Archive” and back up again.\nNothing was lost.";
    return run;
}

RunRecord longTexts() {
    RunRecord run = failedRun();
    run.unitName = "Quarterly reports of the research group, 1998 to 2026, with all their appendices";
    run.accountEmail = std::string(60, 'a') + "@example.com";
    run.destination = "/mnt/nas/backups/" + std::string(90, 'd') + "/Marrowbox";
    run.detail = "“" + std::string(160, 'f') + ".docx” could not be read.";
    return run;
}

RunRecord later(RunRecord run, int hours) {
    run.startedAt = run.startedAt + hours * 3'600.0;
    return run;
}

void write(const std::filesystem::path& folder, const std::string& name, const EmailMessage& message) {
    std::ofstream(folder / (name + ".html")) << message.html;
    std::ofstream(folder / (name + ".txt")) << message.subject << "\n\n" << message.text;
}

void writeAll(const std::filesystem::path& folder) {
    const Formats formats("Europe/Berlin", "en_US");
    std::filesystem::create_directories(folder);
    const auto of = [&](const RunRecord& run) { return EmailMessage::of(run, formats, morning); };
    write(folder, "success", of(someRun()));
    write(folder, "unchanged", of(unchangedRun()));
    write(folder, "failure", of(failedRun()));
    write(folder, "long-texts", of(longTexts()));
    write(folder, "digest",
          EmailMessage::digest({later(someRun(), 2), unchangedRun()}, someRun().unitName, formats));
    write(folder, "digest-failures",
          EmailMessage::digest({later(failedRun(), 2), later(failedRun(), 4), someRun()}, someRun().unitName,
                               formats));
}

} // namespace

} // namespace marrowbox

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "Usage: emailPreview FOLDER\n";
        return 2;
    }
    marrowbox::writeAll(arguments[1]);
    return 0;
}
