#pragma once

#include "Models/JSONRecords.h"
#include "Platform/Descriptor.h"
#include "Platform/FollowingWriter.h"

#include <algorithm>
#include <array>
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

/// The name of a member as JSONWriter::key takes it: with its quotes, a colon and a blank.
template <std::size_t length>
consteval std::array<char, length + 4> memberName(const char* name) {
    std::array<char, length + 4> written{'"'};
    std::copy_n(name, length, written.begin() + 1);
    std::copy_n("\": ", 3, written.begin() + 1 + length);
    return written;
}
template <std::size_t size>
consteval auto memberName(const char (&name)[size]) {
    return memberName<size - 1>(static_cast<const char*>(name));
}

/// A value that JSON cannot say: a text that is not UTF-8, or a number that is not finite.
class JSONEncodingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Puts JSON together in a buffer. Where it has a file, a buffer that is full goes there while the next is
/// filled.
class JSONWriter {
  public:
    explicit JSONWriter(JSONStyle style, const Descriptor* file = nullptr);

    void open(char bracket);
    void close(char bracket);
    /// Begins a member of this memberName, which needs no escape.
    template <std::size_t length>
    void key(const std::array<char, length>& name) {
        // Copies of a length known to the compiler take no call, and hardly anything is written more often.
        char* to = startMember(length);
        std::memcpy(to, name.data(), length);
        used_ += length - (style_ == JSONStyle::pretty ? 0 : 1);
    }
    void colon() { append(style_ == JSONStyle::pretty ? std::string_view(": ") : std::string_view(":")); }
    void element() { startMember(0); }

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
    /// Waits until all that was written is in the file. Nothing may be written afterwards.
    void finish();

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
    /// Begins the next member, and says where so many bytes more may go.
    char* startMember(std::size_t more) {
        char* to = room(1 + indentation() + widest + more);
        char* const start = to;
        if (!isFirst_)
            *to++ = ',';
        isFirst_ = false;
        to = startLine(to);
        used_ += static_cast<std::size_t>(to - start);
        return to;
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
    void handOver();

    static constexpr std::size_t widest = 16;

    JSONStyle style_;
    const Descriptor* file_;
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
    std::unique_ptr<FollowingWriter> following_; ///< Once a buffer has been full.
    std::size_t depth_ = 0;
    bool isFirst_ = true; ///< Of the members of the innermost object or list.
};

template <typename Value>
void writeJSON(JSONWriter& writer, const Value& value);

namespace json {

template <typename Record, std::size_t Position>
void writeField(JSONWriter& writer, const Record& record) {
    using Field = boost::mp11::mp_at_c<DescribedFields<Record>, Position>;
    const auto& value = record.*Field::pointer;
    if constexpr (isOptional<std::remove_cvref_t<decltype(value)>>)
        if (!value)
            return;
    static constexpr auto name = memberName<std::char_traits<char>::length(Field::name)>(Field::name);
    writer.key(name);
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
    writer.finish();
}

} // namespace marrowbox
