#include "Beside/Watched.h"

#include "Measuring/Command.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marrowbox::bench {

Cost costOf(const std::string& command) {
    const std::string line = firstLineOf(ourselves({"watch"}) + " " + oneWord(command));
    Cost cost;
    if (std::sscanf(line.c_str(), "%lf %lf", &cost.seconds, &cost.peakBytes) != 2)
        throw std::runtime_error("A watching process failed.");
    return cost;
}

int watch(const std::string& command) {
    const std::string quiet = "{ " + command + "; } >/dev/null";
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl("/bin/sh", "sh", "-c", quiet.c_str(), nullptr);
        ::_exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child || status != 0)
        return 1;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::printf("%.6f %.0f\n", taken.count(), double(usage.ru_maxrss) * 1024);
    return 0;
}

std::string ourselves(const std::vector<std::string>& arguments) {
    std::string command = quoted(std::filesystem::read_symlink("/proc/self/exe"));
    for (const auto& argument : arguments)
        command += " " + oneWord(argument);
    return command;
}

} // namespace marrowbox::bench
