#include "Measuring/Memory.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace marrowbox::bench {

namespace {

/// The bytes that a file of the system names in KiB; 0 when it does not.
double bytesNamed(const char* file, const std::string& name) {
    std::ifstream lines(file);
    std::string word;
    double kibibytes = 0;
    while (lines >> word)
        if (word == name && lines >> kibibytes)
            return kibibytes * 1024;
    return 0;
}

double ownBytesNamed(const std::string& name) {
    const double bytes = bytesNamed("/proc/self/status", name);
    if (bytes == 0)
        throw std::runtime_error("The system does not tell this process's memory.");
    return bytes;
}

} // namespace

double ownPeakMemory() {
    return ownBytesNamed("VmHWM:");
}

double ownMemory() {
    return ownBytesNamed("VmRSS:");
}

void forgetPeakMemory() {
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush; // the one number that concerns the peak
    if (!file)
        throw std::runtime_error("The system does not count this process's peak memory anew.");
}

std::filesystem::path folderInMemory(std::uintmax_t bytes) {
    const std::filesystem::path memory = "/dev/shm";
    std::error_code isAbsent;
    const auto space = std::filesystem::space(memory, isAbsent);
    const bool hasRoom = !isAbsent && space.available >= bytes &&
                         bytesNamed("/proc/meminfo", "MemAvailable:") >= static_cast<double>(bytes);
    return hasRoom ? memory : std::filesystem::temp_directory_path();
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
