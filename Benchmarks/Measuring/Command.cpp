#include "Measuring/Command.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace marrowbox::bench {

std::string quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

std::string oneWord(const std::string& text) {
    std::string word = "'";
    for (const char character : text)
        if (character == '\'')
            word += "'\\''";
        else
            word += character;
    return word + "'";
}

void runCommand(const std::string& command) {
    const std::string quiet = "{ " + command + "; } >/dev/null";
    if (std::system(quiet.c_str()) != 0)
        throw std::runtime_error("This command failed: " + command);
}

std::string firstLineOf(const std::string& command) {
    std::string text;
    std::array<char, 256> piece{};
    FILE* output = ::popen(command.c_str(), "r");
    while (output != nullptr && std::fgets(piece.data(), piece.size(), output) != nullptr)
        text += piece.data();
    const bool hasSucceeded = output != nullptr && ::pclose(output) == 0;
    if (!hasSucceeded || text.empty())
        throw std::runtime_error("This command failed: " + command);
    return text.substr(0, text.find('\n'));
}

} // namespace marrowbox::bench
