#include "Measuring/Memory.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace marrowbox::bench {

double ownPeakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kibibytes = 0;
    while (status >> word)
        if (word == "VmHWM:" && status >> kibibytes)
            return kibibytes * 1024;
    throw std::runtime_error("The system does not tell this process's peak memory.");
}

double peakMemoryOfRunning(const std::vector<std::string>& arguments) {
    std::string command = "/proc/" + std::to_string(::getpid()) + "/exe";
    for (const auto& argument : arguments)
        command += " '" + argument + "'";
    FILE* output = ::popen(command.c_str(), "r");
    double peak = 0;
    const bool hasPeak = output != nullptr && std::fscanf(output, "%lf", &peak) == 1;
    const bool hasSucceeded = output != nullptr && ::pclose(output) == 0;
    if (!hasPeak || !hasSucceeded)
        throw std::runtime_error("A measuring process failed.");
    return peak;
}

void printPeakMemory() {
    std::printf("%.0f\n", ownPeakMemory());
}

} // namespace marrowbox::bench
