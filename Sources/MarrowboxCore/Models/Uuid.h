#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace marrowbox {

/// A universally unique identifier. Its text is the 8-4-4-4-12 form with upper-case digits.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    friend auto operator<=>(const Uuid&, const Uuid&) = default;

    /// A fresh random one (version 4). Throws std::system_error when the machine has no randomness to give.
    static Uuid random();
    /// Reads the 8-4-4-4-12 form in either case; absent when the text is anything else.
    static std::optional<Uuid> parse(std::string_view text);
    static constexpr std::size_t textLength = 36;
    std::string text() const;
    /// Writes the text to a place with room for its length.
    void writeText(char* to) const;
};

} // namespace marrowbox

template <>
struct std::hash<marrowbox::Uuid> {
    std::size_t operator()(const marrowbox::Uuid& id) const noexcept;
};
