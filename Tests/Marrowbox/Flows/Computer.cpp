#include "Computer.h"

#include <QProcess>
#include <fstream>

namespace marrowbox::test {

namespace {

constexpr const char* opener = R"(#!/bin/sh
printf '%s\n' "$1" >> "$HOME/opened"
)";

void writeProgram(const fs::path& file, const char* text) {
    std::ofstream(file) << text;
    fs::permissions(file, fs::perms::owner_all);
}

void unmount(const fs::path& volume) {
    QProcess::execute("/usr/bin/fusermount3", {"-u", "-q", QString::fromStdString(volume.string())});
}

} // namespace

Computer::Computer() {
    for (const char* name : {"home", "programs", "runtime", "temporary", "settings"}) {
        fs::create_directory(scratch_ / name);
        fs::permissions(scratch_ / name, fs::perms::owner_all);
    }
    google.writeAuthority(authority());
    writeProgram(scratch_ / "programs/xdg-open", opener);
    session_ = {.environment = google.environment(authority()), .temporaryFolder = scratch_ / "temporary"};
    session_.environment["HOME"] = scratch_ / "home";
    session_.environment["PATH"] = (scratch_ / "programs").string() + ":/usr/bin:/bin";
    session_.environment["TMPDIR"] = session_.temporaryFolder;
    session_.environment["XDG_RUNTIME_DIR"] = scratch_ / "runtime";
    session_.environment["XDG_CONFIG_HOME"] = settingsFolder();
    session_.environment["MARROW_DATA_DIR"] = dataFolder();
}

Computer::~Computer() {
    std::error_code none;
    for (const auto& volume : fs::directory_iterator(scratch_ / "runtime/marrowbox", none))
        if (volume.is_directory())
            unmount(volume.path());
}

fs::path Computer::folder(const std::string& name) const {
    fs::path path = scratch_ / "home" / name;
    fs::create_directories(path);
    return path;
}

std::vector<std::string> Computer::opened() const {
    std::vector<std::string> addresses;
    std::ifstream file(scratch_ / "home/opened");
    for (std::string line; std::getline(file, line);)
        addresses.push_back(line);
    return addresses;
}

} // namespace marrowbox::test
