#include "Platform/DataDirectory.h"

#include <array>
#include <pwd.h>
#include <stdexcept>
#include <unistd.h>

namespace marrowbox {

namespace fs = std::filesystem;

namespace {

/// A folder that a variable names. The desktop's rules tell to ignore a relative one.
fs::path folderNamedBy(const char* variable, const Environment& environment) {
    const auto found = environment.find(variable);
    if (found == environment.end() || !found->second.starts_with('/'))
        return {};
    return found->second;
}

fs::path homeDirectory(const Environment& environment) {
    if (const fs::path named = folderNamedBy("HOME", environment); !named.empty())
        return named;
    // A session without HOME still has a user, whom the system's list of users knows.
    passwd user{};
    passwd* found = nullptr;
    std::array<char, 16384> texts{};
    if (::getpwuid_r(::getuid(), &user, texts.data(), texts.size(), &found) != 0 || found == nullptr)
        throw std::runtime_error("The user has no home folder.");
    return found->pw_dir;
}

} // namespace

fs::path dataDirectory(const Environment& environment) {
    const auto chosen = environment.find("MARROW_DATA_DIR");
    if (chosen != environment.end() && chosen->second.starts_with('/'))
        return chosen->second; // the current folder may be gone by now
    if (chosen != environment.end())
        return fs::current_path() / chosen->second;
    fs::path applicationData = folderNamedBy("XDG_DATA_HOME", environment);
    if (applicationData.empty())
        applicationData = homeDirectory(environment) / ".local" / "share";
    return applicationData / "Marrowbox";
}

fs::path settingsDirectory(const Environment& environment) {
    const fs::path named = folderNamedBy("XDG_CONFIG_HOME", environment);
    return named.empty() ? homeDirectory(environment) / ".config" : named;
}

} // namespace marrowbox
