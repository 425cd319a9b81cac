// Runs a fuzz target once on each file of a folder, with no fuzzer: what was found once is a test for ever.
#include "Platform/Files.h"

#include <cstdio>
#include <exception>

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count);

int main(int argumentCount, char** arguments) {
    using namespace marrowbox;
    if (argumentCount != 2)
        return 2;
    int replayed = 0;
    for (const auto& name : directoryNames(arguments[1])) {
        const std::string bytes = readFile(fs::path(arguments[1]) / name);
        std::printf("%s\n", name.c_str());
        std::fflush(stdout); // the last name told is the guilty one
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        ++replayed;
    }
    return replayed > 0 ? 0 : 1;
}
