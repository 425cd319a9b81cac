#include "SnapshotMount/PropertyList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace marrowbox {

namespace {

/// Deeper than any inventory; a document beyond it is hostile.
constexpr int deepestNesting = 64;

constexpr bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

std::string utf8(std::uint32_t scalar) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (scalar < 0x80)
        return {byte(scalar)};
    if (scalar < 0x800)
        return {byte(0xC0 | scalar >> 6), byte(0x80 | (scalar & 0x3F))};
    if (scalar < 0x10000)
        return {byte(0xE0 | scalar >> 12), byte(0x80 | (scalar >> 6 & 0x3F)), byte(0x80 | (scalar & 0x3F))};
    return {byte(0xF0 | scalar >> 18), byte(0x80 | (scalar >> 12 & 0x3F)), byte(0x80 | (scalar >> 6 & 0x3F)),
            byte(0x80 | (scalar & 0x3F))};
}

/// A tag as it stands in the document.
struct Tag {
    std::string_view name;
    bool isClosing = false;
    bool isEmpty = false; ///< Opened and closed in one, as <true/> is.
};

class PropertyListReader {
  public:
    explicit PropertyListReader(std::string_view document) : document_(document) {}

    PropertyList read() {
        skipProlog();
        const Tag root = tag();
        if (root.name != "plist" || root.isClosing || root.isEmpty)
            fail("a plist element was expected");
        PropertyList value = this->value(tag(), 0);
        close("plist");
        skipBlanksAndComments();
        if (position_ != document_.size())
            fail("something follows the end");
        return value;
    }

  private:
    [[noreturn]] void fail(std::string_view fault) const {
        throw PropertyListError("The property list is malformed at byte " + std::to_string(position_) + ": " +
                                std::string(fault) + ".");
    }

    std::string_view rest() const { return document_.substr(position_); }

    bool skip(std::string_view text) {
        if (!rest().starts_with(text))
            return false;
        position_ += text.size();
        return true;
    }

    /// What stands up to the mark, which is skipped too.
    std::string_view until(std::string_view mark) {
        const std::size_t length = rest().find(mark);
        if (length == std::string_view::npos)
            fail("it is cut off");
        const auto text = rest().substr(0, length);
        position_ += length + mark.size();
        return text;
    }

    void skipBlanksAndComments() {
        while (true) {
            while (position_ < document_.size() && isBlank(document_[position_]))
                ++position_;
            if (!skip("<!--"))
                return;
            until("-->");
        }
    }

    void skipProlog() {
        if (skip("<?xml"))
            until("?>");
        skipBlanksAndComments();
        if (!skip("<!DOCTYPE"))
            return;
        // An internal subset could declare entities of its own.
        if (until(">").find('[') != std::string_view::npos)
            fail("a document type with declarations is not accepted");
    }

    Tag tag() {
        skipBlanksAndComments();
        if (!skip("<"))
            fail("a tag was expected");
        Tag tag;
        tag.isClosing = skip("/");
        std::string_view text = until(">");
        tag.isEmpty = text.ends_with('/');
        if (tag.isEmpty)
            text.remove_suffix(1);
        tag.name =
            text.substr(0, static_cast<std::size_t>(std::ranges::find_if(text, isBlank) - text.begin()));
        if (tag.name.empty() || (tag.isClosing && tag.isEmpty))
            fail("a tag has no name");
        return tag;
    }

    void close(std::string_view name) {
        const Tag end = tag();
        if (!end.isClosing || end.name != name)
            fail("an end of " + std::string(name) + " was expected");
    }

    PropertyList value(const Tag& start, int depth) {
        if (start.isClosing)
            fail("a value was expected");
        if (depth > deepestNesting)
            fail("it is nested too deeply");
        if (start.name == "dict")
            return PropertyList(start.isEmpty ? PropertyList::Dictionary() : dictionary(depth));
        if (start.name == "array")
            return PropertyList(start.isEmpty ? PropertyList::List() : list(depth));
        if (start.name == "string")
            return PropertyList(content(start));
        if (start.name == "true" || start.name == "false")
            return truth(start);
        constexpr auto others = std::to_array<std::string_view>({"integer", "real", "date", "data"});
        if (std::ranges::find(others, start.name) == others.end() || start.isEmpty)
            fail("an element is not known");
        return PropertyList(PropertyList::Other{std::string(start.name), content(start)});
    }

    PropertyList truth(const Tag& start) {
        if (!start.isEmpty)
            close(start.name);
        return PropertyList(PropertyList::Other{std::string(start.name), {}});
    }

    PropertyList::Dictionary dictionary(int depth) {
        PropertyList::Dictionary members;
        while (true) {
            const Tag next = tag();
            if (next.isClosing && next.name == "dict")
                return members;
            if (next.isClosing || next.name != "key")
                fail("a key was expected");
            std::string key = content(next);
            PropertyList member = value(tag(), depth + 1);
            if (!members.emplace(std::move(key), std::move(member)).second)
                fail("a key stands twice");
        }
    }

    PropertyList::List list(int depth) {
        PropertyList::List elements;
        while (true) {
            const Tag next = tag();
            if (next.isClosing && next.name == "array")
                return elements;
            elements.push_back(value(next, depth + 1));
        }
    }

    /// The text of an element up to its end tag.
    std::string content(const Tag& start) {
        std::string text;
        while (!start.isEmpty) {
            if (skip("<![CDATA[")) {
                text += until("]]>");
            } else if (skip("<!--")) {
                until("-->");
            } else if (rest().starts_with('<')) {
                close(start.name);
                break;
            } else if (skip("&")) {
                text += entity(until(";"));
            } else {
                const std::size_t length = rest().find_first_of("<&");
                if (length == std::string_view::npos)
                    fail("it is cut off");
                text += rest().substr(0, length);
                position_ += length;
            }
        }
        return text;
    }

    std::string entity(std::string_view name) const {
        constexpr auto named = std::to_array<std::pair<std::string_view, std::string_view>>(
            {{"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"quot", "\""}, {"apos", "'"}});
        for (const auto& [known, text] : named)
            if (name == known)
                return std::string(text);
        if (!name.starts_with('#'))
            fail("an entity is not known");
        name.remove_prefix(1);
        const bool isHexadecimal = name.starts_with('x');
        if (isHexadecimal)
            name.remove_prefix(1);
        std::uint32_t scalar = 0;
        const auto end =
            std::from_chars(name.data(), name.data() + name.size(), scalar, isHexadecimal ? 16 : 10);
        const bool isWhole = end.ec == std::errc() && end.ptr == name.data() + name.size();
        if (!isWhole || scalar == 0 || scalar > 0x10FFFF || (scalar >= 0xD800 && scalar <= 0xDFFF))
            fail("an entity names no character");
        return utf8(scalar);
    }

    std::string_view document_;
    std::size_t position_ = 0;
};

} // namespace

PropertyList PropertyList::parse(std::string_view document) {
    return PropertyListReader(document).read();
}

const PropertyList* PropertyList::member(const std::string& key) const {
    const Dictionary* members = dictionary();
    if (members == nullptr)
        return nullptr;
    const auto found = members->find(key);
    return found == members->end() ? nullptr : &found->second;
}

} // namespace marrowbox
