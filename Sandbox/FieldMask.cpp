#include "Sandbox/FieldMask.h"

#include <algorithm>

namespace marrowbox::sandbox {

namespace {

/// True when a path of the mask is the wanted one, stands above it, or stands below it.
bool covers(std::string_view masked, std::string_view wanted) {
    if (masked == "*")
        return true;
    if (masked.ends_with("/*"))
        masked.remove_suffix(2);
    const auto [inMasked, inWanted] =
        std::mismatch(masked.begin(), masked.end(), wanted.begin(), wanted.end());
    if (inMasked == masked.end())
        return inWanted == wanted.end() || *inWanted == '/';
    return inWanted == wanted.end() && *inMasked == '/';
}

} // namespace

FieldMask::FieldMask(std::string_view text) {
    std::vector<std::string> above{""};
    std::string name;
    const auto take = [&] {
        if (!name.empty())
            paths_.push_back(above.back() + name);
        name.clear();
    };
    for (const char character : text) {
        if (character == ',') {
            take();
        } else if (character == '(') {
            above.push_back(above.back() + name + "/");
            name.clear();
        } else if (character == ')') {
            take();
            if (above.size() > 1)
                above.pop_back();
        } else if (character != ' ') {
            name += character;
        }
    }
    take();
}

bool FieldMask::wants(std::string_view path) const {
    return std::any_of(paths_.begin(), paths_.end(),
                       [&](const std::string& masked) { return covers(masked, path); });
}

} // namespace marrowbox::sandbox
