#pragma once

#include <span>
#include <string>
#include <string_view>

namespace marrowbox {

/// The systems that the program's sentences know.
enum class OperatingSystem { macOS, linux };

/// The system that this program was built for.
inline constexpr OperatingSystem hostSystem =
#ifdef __APPLE__
    OperatingSystem::macOS;
#else
    OperatingSystem::linux;
#endif

/// A sentence that names a part of a Mac, and the same sentence for people at a Linux desktop. Only such
/// nouns differ.
struct Wording {
    std::string_view macOS;
    std::string_view linux;
};

/// Every sentence of the program that is not the same on all systems.
std::span<const Wording> wordings();

/// A sentence, given as people at a Mac read it, in the words of a system. A sentence that the table does not
/// have is the same everywhere.
std::string worded(std::string_view sentence, OperatingSystem system = hostSystem);

} // namespace marrowbox
