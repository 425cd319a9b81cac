#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// Unicode rules for names and paths. All texts are UTF-8; a text that is not is treated byte by byte where a
/// rule cannot be applied. Any thread.
namespace marrowbox {

/// True when every byte is below 128.
bool isAscii(std::string_view text);

/// The key under which a case-insensitive, normalisation-insensitive file system sees a text: NFC first,
/// lower case second (full Unicode lower-casing, no locale).
std::string collisionKey(std::string_view text);

/// Appends the collision key to a buffer; plain ASCII costs one pass and no allocation of its own.
void appendCollisionKey(std::string_view text, std::string& to);

/// The text with each byte that is not part of valid UTF-8 replaced by U+FFFD.
std::string validText(std::string_view text);

/// True for the general categories Cc and Cf.
bool isControlCharacter(char32_t scalar);

/// Calls visit(scalar, itsBytes) for each Unicode scalar; an invalid byte counts as U+FFFD with its one byte.
template <typename Visit>
void forEachScalar(std::string_view text, Visit visit);
char32_t nextScalar(std::string_view text, std::size_t& position);

template <typename Visit>
void forEachScalar(std::string_view text, Visit visit) {
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const char32_t scalar = nextScalar(text, position);
        visit(scalar, text.substr(start, position - start));
    }
}

/// The locale-aware, digit-aware, case-insensitive order of a file browser: "file 9" before "file 10".
/// Negative, zero or positive.
class NameOrder {
  public:
    /// For the user's locale.
    NameOrder();
    /// For a locale by its identifier, such as "en" or "de_DE".
    explicit NameOrder(const std::string& locale);
    NameOrder(NameOrder&&) noexcept;
    ~NameOrder();
    int compare(std::string_view left, std::string_view right) const;

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

/// The part behind the last dot of a name, as a file browser understands an extension: empty when there is no
/// dot, when the dot is first or last, or when the extension holds a blank.
std::string_view pathExtension(std::string_view name);

/// The name without its extension and that dot; the name itself when it has none.
std::string_view withoutPathExtension(std::string_view name);

} // namespace marrowbox
