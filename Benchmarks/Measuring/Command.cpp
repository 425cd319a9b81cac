#include "Measuring/Command.h"

#include <cstdlib>
#include <stdexcept>

namespace marrowbox::bench {

std::string quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

void runCommand(const std::string& command) {
    const std::string quiet = "{ " + command + "; } >/dev/null";
    if (std::system(quiet.c_str()) != 0)
        throw std::runtime_error("This command failed: " + command);
}

} // namespace marrowbox::bench
