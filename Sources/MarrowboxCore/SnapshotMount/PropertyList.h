#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace marrowbox {

/// A text that is not a whole XML property list. It names the fault and its place.
class PropertyListError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A value of a property list. Strings, lists and dictionaries are read; of numbers, dates and bytes only the
/// text between their tags is kept, since nobody here asks for more.
class PropertyList {
  public:
    using List = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;
    /// A boolean, a number, a date or bytes.
    struct Other {
        std::string element;
        std::string text;
        friend bool operator==(const Other&, const Other&) = default;
    };

    /// Reads a whole document. Throws PropertyListError for anything but one complete value: cut off, doubled
    /// keys, unknown elements, bytes before or behind.
    static PropertyList parse(std::string_view document);

    PropertyList() = default;
    explicit PropertyList(std::variant<std::string, List, Dictionary, Other> value)
        : value_(std::move(value)) {}

    /// The value as that kind; null when it is another.
    const std::string* string() const { return std::get_if<std::string>(&value_); }
    const List* list() const { return std::get_if<List>(&value_); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }
    /// A dictionary's member; null when there is none, or no dictionary.
    const PropertyList* member(const std::string& key) const;

    friend bool operator==(const PropertyList&, const PropertyList&) = default;

  private:
    std::variant<std::string, List, Dictionary, Other> value_;
};

} // namespace marrowbox
