#include "Processes/ProcessSurroundings.h"

#include <string_view>
#include <unistd.h>

namespace marrowbox {

ProcessSurroundings ProcessSurroundings::ofThisProcess() {
    ProcessSurroundings surroundings;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const auto equals = text.find('=');
        // Of two variables with one name, the first is the one that programs see.
        if (equals != std::string_view::npos)
            surroundings.environment.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    const auto folder = surroundings.environment.find("TMPDIR");
    const bool isNamed = folder != surroundings.environment.end() && !folder->second.empty();
    surroundings.temporaryFolder = isNamed ? folder->second : "/tmp";
    return surroundings;
}

} // namespace marrowbox
