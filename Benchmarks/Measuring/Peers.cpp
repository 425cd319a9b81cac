#include "Measuring/Peers.h"

#include "Measuring/Command.h"

namespace marrowbox::bench {

namespace fs = std::filesystem;

Restic::Restic(const fs::path& folder)
    : settings_("RESTIC_PASSWORD=bench RESTIC_REPOSITORY=" + quoted(folder / "repository") +
                " RESTIC_CACHE_DIR=" + quoted(folder / "cache") + " ") {
    fs::create_directories(folder);
    run("init", folder);
}

std::string Restic::command(const std::string& arguments, const fs::path& in) const {
    return "cd " + quoted(in) + " && " + settings_ + "restic --quiet " + arguments;
}

void Restic::run(const std::string& arguments, const fs::path& in) const {
    runCommand(command(arguments, in));
}

Borg::Borg(const fs::path& folder)
    : settings_("BORG_UNKNOWN_UNENCRYPTED_REPO_ACCESS_IS_OK=yes BORG_REPO=" + quoted(folder / "repository") +
                " BORG_BASE_DIR=" + quoted(folder / "base") + " ") {
    fs::create_directories(folder);
    run("init --encryption=none", folder);
}

std::string Borg::command(const std::string& arguments, const fs::path& in) const {
    return "cd " + quoted(in) + " && " + settings_ + "borg " + arguments;
}

void Borg::run(const std::string& arguments, const fs::path& in) const {
    runCommand(command(arguments, in));
}

} // namespace marrowbox::bench
