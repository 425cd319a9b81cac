#pragma once

#include "Models/JSONRecords.h"
#include "Platform/Descriptor.h"

#include <bit>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace marrowbox {

/// Pretty is for files that a person may read: two blanks a level, one member a line. Compact has no white
/// space.
enum class JSONStyle { pretty, compact };

/// A value that JSON cannot say: a text that is not UTF-8, or a number that is not finite.
class JSONEncodingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Puts JSON together in a buffer, and empties it into a file, where it has one, whenever it is full.
class JSONWriter {
  public:
    explicit JSONWriter(JSONStyle style, const Descriptor* file = nullptr);

    void open(char bracket);
    void close(char bracket);
    /// Begins a member; the literal is the name with its quotes, and needs no escape.
    void key(std::string_view literal) {
        separate(literal.size());
        append(literal);
        colon();
    }
    void colon() { append(style_ == JSONStyle::pretty ? std::string_view(": ") : std::string_view(":")); }
    void element() { separate(); }

    void text(std::string_view value);
    /// A text of characters that are known to need no escape.
    void plainText(std::string_view value);
    void objectHash(const ObjectHash& hash);
    void uuid(const Uuid& id);
    void integer(std::int64_t value);
    /// The shortest plain decimal that reads back to the same double.
    void number(double value);
    void boolean(bool value) { append(value ? std::string_view("true") : std::string_view("false")); }

    /// What was written and is not yet in the file: all of it where there is none.
    std::string take();
    /// The same, in place until the next call that writes.
    std::string_view written() const { return {buffer_.get(), used_}; }
    /// Forgets what was written and keeps the place in the text, to write on from there.
    void clear() { used_ = 0; }
    /// Empties the buffer into the file.
    void flush();

  private:
    /// Makes room for so many bytes and says where they go.
    char* room(std::size_t count) {
        if (capacity_ - used_ < count)
            makeRoom(count);
        return buffer_.get() + used_;
    }
    void append(std::string_view bytes) {
        std::memcpy(room(bytes.size()), bytes.data(), bytes.size());
        used_ += bytes.size();
    }
    /// Begins the next member, with room for so many bytes more.
    void separate(std::size_t more = 0) {
        char* to = room(1 + indentation() + widest + more);
        char* const start = to;
        if (!isFirst_)
            *to++ = ',';
        isFirst_ = false;
        used_ += static_cast<std::size_t>(startLine(to) - start);
    }
    /// How many bytes a new line takes with the blanks that begin it.
    std::size_t indentation() const { return style_ == JSONStyle::pretty ? 1 + 2 * depth_ : 0; }
    /// Begins a new line there and says where it goes on. It may write blanks up to the widest beyond.
    char* startLine(char* to) const {
        const std::size_t length = indentation();
        if (length == 0)
            return to;
        // Blanks of a number known to the compiler take no call; hardly a record is nested deeper.
        if (length <= widest)
            std::memset(to, ' ', widest);
        else
            std::memset(to, ' ', length);
        *to = '\n';
        return to + length;
    }
    void makeRoom(std::size_t count);

    static constexpr std::size_t widest = 16;

    JSONStyle style_;
    const Descriptor* file_;
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
    std::size_t depth_ = 0;
    bool isFirst_ = true; ///< Of the members of the innermost object or list.
};

template <typename Value>
void writeJSON(JSONWriter& writer, const Value& value);

namespace json {

/// A field's name with its quotes, made once at compile time.
template <typename Descriptor>
struct QuotedName {
    static constexpr std::size_t length = std::char_traits<char>::length(Descriptor::name);
    static constexpr auto text = [] {
        std::array<char, length + 2> quoted{};
        quoted.front() = quoted.back() = '"';
        std::copy_n(Descriptor::name, length, quoted.begin() + 1);
        return quoted;
    }();
};

template <typename Record, std::size_t Position>
void writeField(JSONWriter& writer, const Record& record) {
    using Field = boost::mp11::mp_at_c<DescribedFields<Record>, Position>;
    const auto& value = record.*Field::pointer;
    if constexpr (isOptional<std::remove_cvref_t<decltype(value)>>)
        if (!value)
            return;
    writer.key({QuotedName<Field>::text.data(), QuotedName<Field>::text.size()});
    if constexpr (isOptional<std::remove_cvref_t<decltype(value)>>)
        writeJSON(writer, *value);
    else
        writeJSON(writer, value);
}

template <typename Record>
void writeRecord(JSONWriter& writer, const Record& record) {
    writer.open('{');
    [&]<std::size_t... Index>(std::index_sequence<Index...>) {
        (writeField<Record, fieldsByName<Record>()[Index]>(writer, record), ...);
    }(std::make_index_sequence<fieldCount<Record>>());
    writer.close('}');
}

inline void write(JSONWriter& writer, bool value) {
    writer.boolean(value);
}
inline void write(JSONWriter& writer, std::int64_t value) {
    writer.integer(value);
}
inline void write(JSONWriter& writer, double value) {
    writer.number(value);
}
inline void write(JSONWriter& writer, const Date& value) {
    writer.number(value.secondsSinceReference);
}
inline void write(JSONWriter& writer, const std::string& value) {
    writer.text(value);
}
inline void write(JSONWriter& writer, const SharedText& value) {
    writer.text(value.view());
}
inline void write(JSONWriter& writer, const ObjectHash& value) {
    writer.objectHash(value);
}
inline void write(JSONWriter& writer, const Uuid& value) {
    writer.uuid(value);
}
void write(JSONWriter& writer, const ByteString& value);

template <typename Value>
void write(JSONWriter& writer, const std::vector<Value>& list) {
    writer.open('[');
    for (const auto& element : list) {
        writer.element();
        writeJSON(writer, element);
    }
    writer.close(']');
}

template <typename Record>
void write(JSONWriter& writer, const Shared<Record>& shared) {
    writeJSON(writer, *shared);
}

/// Names of members are written as texts of their own, since they may hold anything.
void writeMapKey(JSONWriter& writer, const std::string& key);

template <typename Value>
void write(JSONWriter& writer, const std::map<std::string, Value>& map) {
    writer.open('{');
    for (const auto& [key, value] : map) {
        writeMapKey(writer, key);
        writeJSON(writer, value);
    }
    writer.close('}');
}

} // namespace json

template <typename Value>
void writeJSON(JSONWriter& writer, const Value& value) {
    if constexpr (std::is_enum_v<Value>)
        writer.plainText(enumerationName(value));
    else if constexpr (boost::describe::has_describe_members<Value>::value)
        json::writeRecord(writer, value);
    else
        json::write(writer, value);
}

/// The JSON text of a record: keys sorted, optional fields without a value left out, forward slashes as they
/// are. Throws JSONEncodingError.
template <typename Record>
std::string encodeJSON(const Record& record, JSONStyle style) {
    JSONWriter writer(style);
    writeJSON(writer, record);
    return writer.take();
}

/// The same into an open file, without holding the text.
template <typename Record>
void encodeJSON(const Record& record, JSONStyle style, const Descriptor& file) {
    JSONWriter writer(style, &file);
    writeJSON(writer, record);
    writer.flush();
}

} // namespace marrowbox
