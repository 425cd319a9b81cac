#include "Marrowbox/Platform/ProgramLauncher.h"

#include <QSocketNotifier>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marrowbox {

namespace {

std::optional<std::string> findProgram(const std::string& program, const Environment& environment) {
    std::string_view folders = "/usr/local/bin:/usr/bin:/bin";
    if (const auto path = environment.find("PATH"); path != environment.end())
        folders = path->second;
    while (!folders.empty()) {
        const auto end = std::min(folders.find(':'), folders.size());
        const std::string candidate = std::string(folders.substr(0, end)) + "/" + program;
        // A folder that is not absolute would make the current folder decide which program runs.
        if (candidate.starts_with('/') && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    return std::nullopt;
}

/// How the program starts: a session of its own, signals as a login gives them, nothing on standard input.
class LaunchSettings {
  public:
    LaunchSettings() {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        ::posix_spawnattr_init(&attributes);
        sigset_t every{};
        sigset_t none{};
        std::memset(&every, 0xFF, sizeof every); // also those that the C library keeps for itself
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigdefault(&attributes, &every);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setflags(&attributes,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    LaunchSettings(const LaunchSettings&) = delete;
    LaunchSettings& operator=(const LaunchSettings&) = delete;
    ~LaunchSettings() {
        ::posix_spawnattr_destroy(&attributes);
        ::posix_spawn_file_actions_destroy(&actions);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts)
        all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

/// Takes the status of a process that has ended. False when it has failed.
bool reap(const Descriptor& process) {
    siginfo_t end{};
    if (::waitid(P_PIDFD, static_cast<id_t>(process.number()), &end, WEXITED | WNOHANG) != 0)
        return false;
    return end.si_code == CLD_EXITED && end.si_status == 0;
}

} // namespace

Descriptor ProgramLauncher::launch(const std::string& program,
                                   const std::vector<std::string>& arguments) const {
    const auto executable = findProgram(program, environment_);
    if (!executable)
        return {};
    std::vector<std::string> words{*executable};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment_)
        variables.push_back(name + "=" + value);
    const LaunchSettings settings;
    pid_t process = 0;
    if (::posix_spawn(&process, executable->c_str(), &settings.actions, &settings.attributes,
                      pointers(words).data(), pointers(variables).data()) != 0)
        return {};
    // The process has not been reaped, so the number is still its own.
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

void ProgramLauncher::reapWhenEnded(Descriptor process) {
    const int number = process.number();
    auto* const ended = new QSocketNotifier(number, QSocketNotifier::Read, &watches_);
    QObject::connect(ended, &QSocketNotifier::activated, ended,
                     [ended, process = std::make_shared<Descriptor>(std::move(process))] {
                         reap(*process);
                         ended->setEnabled(false);
                         ended->deleteLater();
                     });
}

bool ProgramLauncher::start(const std::string& program, const std::vector<std::string>& arguments) {
    Descriptor process = launch(program, arguments);
    if (!process)
        return false;
    reapWhenEnded(std::move(process));
    return true;
}

bool ProgramLauncher::run(const std::string& program, const std::vector<std::string>& arguments,
                          std::chrono::milliseconds patience) {
    Descriptor process = launch(program, arguments);
    if (!process)
        return false;
    pollfd end{.fd = process.number(), .events = POLLIN, .revents = 0};
    if (::poll(&end, 1, static_cast<int>(patience.count())) > 0)
        return reap(process);
    reapWhenEnded(std::move(process));
    return true;
}

} // namespace marrowbox
