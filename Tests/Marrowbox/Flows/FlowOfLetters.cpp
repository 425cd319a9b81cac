#include "FlowOfLetters.h"

namespace marrowbox::test {

FlowOfLetters::FlowOfLetters() : letters_(google.drive().addFolder("root", "Letters")) {
    hello_ = google.drive().addFile(letters_, "Hello.txt", "Dear Ada,\n", "text/plain");
    startProgram();
    connectAccount();
    makeBackup("Letters");
}

void FlowOfLetters::backUpAgain() {
    const std::size_t runs = configuration().runs.size();
    user.click("Back up Letters");
    EXPECT_TRUE(comesToBeWritten([&](const auto& written) { return written.runs.size() > runs; }));
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
    EXPECT_TRUE(user.comesToShow("Back up Letters"));
}

void FlowOfLetters::prepareSlowBackup() {
    slow_ = google.drive().addFile(letters_, "Slow.bin", "Slow", "text/plain");
    google.inject(sandbox::Fault::on(sandbox::media(slow_)).always().stallAfterBodyBytes(1));
}

bool FlowOfLetters::comesToWaitForSlowBackup() {
    return user.comesTo([this] { return google.requests().count(sandbox::media(slow_)) > 0; });
}

void FlowOfLetters::beginSlowBackup() {
    prepareSlowBackup();
    user.click("Back up Letters");
    EXPECT_TRUE(user.comesToShow("Cancel snapshot"));
    EXPECT_TRUE(comesToWaitForSlowBackup());
}

} // namespace marrowbox::test
