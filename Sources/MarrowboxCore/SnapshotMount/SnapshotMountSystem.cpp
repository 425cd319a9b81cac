#include "SnapshotMount/SnapshotMountSystem.h"

#include "Platform/Files.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fcntl.h>
#include <libmount/libmount.h>
#include <memory>
#include <sys/syscall.h>
#include <system_error>

namespace marrowbox {

namespace {

constexpr const char* mountList = "/proc/self/mountinfo";

/// The arguments of a process, its name first; none when it is gone or not for us to see.
std::vector<std::string> argumentsOf(const std::string& process) {
    std::string text;
    try {
        text = readFile(fs::path("/proc") / process / "cmdline");
    } catch (const std::system_error&) {
        return {};
    }
    std::vector<std::string> arguments;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\0', start), text.size());
        arguments.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return arguments;
}

/// Anybody may start a program with the arguments of ours, and never end it.
bool isOurs(const std::string& process) {
    struct stat status{};
    return ::stat(("/proc/" + process).c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

bool hasAll(const std::string& process, const std::vector<std::string>& wanted) {
    if (!isOurs(process))
        return false;
    const auto arguments = argumentsOf(process);
    return std::ranges::all_of(wanted, [&](const std::string& text) {
        return std::ranges::find(arguments, text) != arguments.end();
    });
}

/// Empty when the process is gone.
Descriptor openProcess(const std::string& name) {
    pid_t number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)));
}

/// A width cuts each command line, and a path behind the cut would look as if nobody used it; a personality
/// may not know the question. What a library tells a developer stands among a tool's answer, and the date of
/// a build is refused by the maker of images when it is none.
bool changesAnswers(std::string_view variable) {
    constexpr std::array settings{"COLUMNS", "CMD_ENV", "PS_PERSONALITY", "SOURCE_DATE_EPOCH"};
    return std::ranges::find(settings, variable) != settings.end() || variable.ends_with("_DEBUG");
}

} // namespace

std::optional<std::vector<fs::path>> SnapshotMountSystem::mountPoints() const {
    struct Release {
        void operator()(libmnt_table* table) const { mnt_unref_table(table); }
        void operator()(libmnt_iter* position) const { mnt_free_iter(position); }
    };
    const std::unique_ptr<libmnt_table, Release> table(mnt_new_table_from_file(mountList));
    const std::unique_ptr<libmnt_iter, Release> position(mnt_new_iter(MNT_ITER_FORWARD));
    if (!table || !position)
        return std::nullopt;
    std::vector<fs::path> points;
    libmnt_fs* mount = nullptr;
    int answer = 0;
    while ((answer = mnt_table_next_fs(table.get(), position.get(), &mount)) == 0) {
        const char* target = mnt_fs_get_target(mount);
        if (target == nullptr)
            return std::nullopt;
        points.emplace_back(target);
    }
    if (answer < 0)
        return std::nullopt;
    return points;
}

uid_t SnapshotMountSystem::owner(const fs::path& path) const {
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0)
        throwSystemError("lstat", path);
    return status.st_uid;
}

uid_t SnapshotMountSystem::currentUser() const {
    return ::getuid();
}

std::vector<Descriptor>
SnapshotMountSystem::processesWithArguments(const std::vector<std::string>& arguments) const {
    std::vector<Descriptor> found;
    for (const std::string& name : directoryNames("/proc")) {
        if (name.find_first_not_of("0123456789") != std::string::npos || !hasAll(name, arguments))
            continue;
        Descriptor process = openProcess(name);
        // Asked again, since the number may have gone to another process before it was opened.
        if (process && hasAll(name, arguments))
            found.push_back(std::move(process));
    }
    return found;
}

LiveMountSystem::LiveMountSystem(ProcessSurroundings surroundings) : surroundings_(std::move(surroundings)) {
    std::erase_if(surroundings_.environment,
                  [](const auto& variable) { return changesAnswers(variable.first); });
}

asio::awaitable<ProcessRunner::Result> LiveMountSystem::run(fs::path executable,
                                                            std::vector<std::string> arguments,
                                                            std::map<std::string, std::string> environment,
                                                            std::stop_token stop) {
    return ProcessRunner::run(std::move(executable), std::move(arguments), std::move(environment),
                              surroundings_, std::move(stop));
}

} // namespace marrowbox
