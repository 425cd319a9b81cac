#include "Models/JSONWriter.h"

#include "Platform/Base64.h"
#include "Platform/Files.h"

#include <charconv>
#include <cmath>

namespace marrowbox {

namespace {

constexpr std::size_t bufferSize = 256 * 1024;
/// More than the longest plain decimal of a double has.
constexpr std::size_t longestNumber = 1100;

constexpr std::uint64_t everyByte(std::uint8_t value) {
    return 0x0101010101010101ULL * value;
}

/// Whether one of eight bytes is a control character, a quote, a backslash or no ASCII.
bool needsLook(std::uint64_t eight) {
    const std::uint64_t high = everyByte(0x80);
    const std::uint64_t quote = eight ^ everyByte('"');
    const std::uint64_t backslash = eight ^ everyByte('\\');
    const std::uint64_t below = eight - everyByte(0x20);
    return ((eight | below | (quote - everyByte(1)) | (backslash - everyByte(1))) & high) != 0;
}

/// Copies what needs no escape at the start, and says how many bytes that is.
std::size_t copyPlain(std::string_view text, char* to) {
    std::size_t position = 0;
    for (; position + 8 <= text.size(); position += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, text.data() + position, 8);
        if (needsLook(eight))
            break;
        std::memcpy(to + position, &eight, 8);
    }
    for (; position < text.size(); ++position) {
        const auto byte = static_cast<unsigned char>(text[position]);
        if (byte < 0x20 || byte >= 0x80 || byte == '"' || byte == '\\')
            break;
        to[position] = text[position];
    }
    return position;
}

/// The length of the well-formed UTF-8 sequence at the start; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const auto continues = [&](std::size_t index, unsigned low = 0x80, unsigned high = 0xBF) {
        return index < text.size() && byte(index) >= low && byte(index) <= high;
    };
    const unsigned first = byte(0);
    if (first >= 0xC2 && first <= 0xDF)
        return continues(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const unsigned low = first == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = first == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const unsigned low = first == 0xF0 ? 0x90 : 0x80;
        const unsigned high = first == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

std::string escapeOf(unsigned char byte) {
    switch (byte) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    return std::string("\\u00") + digits[byte >> 4] + digits[byte & 15];
}

} // namespace

JSONWriter::JSONWriter(JSONStyle style, const Descriptor* file)
    : style_(style), file_(file), capacity_(file != nullptr ? bufferSize : 512) {
    buffer_ = std::make_unique_for_overwrite<char[]>(capacity_);
}

void JSONWriter::open(char bracket) {
    append({&bracket, 1});
    ++depth_;
    isFirst_ = true;
}

void JSONWriter::close(char bracket) {
    --depth_;
    char* to = room(indentation() + widest + 1);
    char* const start = to;
    if (!isFirst_)
        to = startLine(to);
    *to++ = bracket;
    used_ += static_cast<std::size_t>(to - start);
    isFirst_ = false;
}

void JSONWriter::text(std::string_view value) {
    append("\"");
    while (true) {
        const std::size_t plain = copyPlain(value, room(value.size()));
        used_ += plain;
        value.remove_prefix(plain);
        if (value.empty())
            break;
        const auto byte = static_cast<unsigned char>(value.front());
        if (byte < 0x80) {
            append(escapeOf(byte));
            value.remove_prefix(1);
            continue;
        }
        const std::size_t length = sequenceLength(value);
        if (length == 0)
            throw JSONEncodingError("A text that is not valid UTF-8 cannot be written as JSON.");
        append(value.substr(0, length));
        value.remove_prefix(length);
    }
    append("\"");
}

void JSONWriter::plainText(std::string_view value) {
    append("\"");
    append(value);
    append("\"");
}

void JSONWriter::uuid(const Uuid& id) {
    constexpr std::size_t length = Uuid::textLength + 2;
    char* to = room(length);
    to[0] = to[length - 1] = '"';
    id.writeText(to + 1);
    used_ += length;
}

void JSONWriter::objectHash(const ObjectHash& hash) {
    if (!hash.isValid())
        return text(hash.text());
    constexpr std::size_t length = 66;
    char* to = room(length);
    to[0] = to[length - 1] = '"';
    hash.writeText(to + 1);
    used_ += length;
}

void JSONWriter::integer(std::int64_t value) {
    constexpr std::size_t longest = 20;
    char* to = room(longest);
    used_ += static_cast<std::size_t>(std::to_chars(to, to + longest, value).ptr - to);
}

void JSONWriter::number(double value) {
    if (!std::isfinite(value))
        throw JSONEncodingError("A number that is not finite cannot be written as JSON.");
    char* to = room(longestNumber);
    used_ += static_cast<std::size_t>(
        std::to_chars(to, to + longestNumber, value, std::chars_format::fixed).ptr - to);
}

std::string JSONWriter::take() {
    return {buffer_.get(), std::exchange(used_, 0)};
}

void JSONWriter::finish() {
    if (!following_) // a small file is not worth a thread
        return writeAll(*file_, {buffer_.get(), std::exchange(used_, 0)});
    handOver();
    following_->finish();
}

void JSONWriter::handOver() {
    if (!following_)
        following_ = std::make_unique<FollowingWriter>(*file_, bufferSize);
    buffer_ = following_->exchange(std::move(buffer_), std::exchange(used_, 0));
    capacity_ = bufferSize; // also where this one had grown
}

void JSONWriter::makeRoom(std::size_t count) {
    if (file_ != nullptr && used_ > 0)
        handOver();
    if (capacity_ - used_ >= count)
        return;
    const std::size_t larger = std::max(capacity_ * 2, used_ + count);
    auto grown = std::make_unique_for_overwrite<char[]>(larger);
    std::memcpy(grown.get(), buffer_.get(), used_);
    buffer_ = std::move(grown);
    capacity_ = larger;
}

namespace json {

void write(JSONWriter& writer, const ByteString& value) {
    writer.plainText(base64Encoded(value.bytes));
}

void writeMapKey(JSONWriter& writer, const std::string& key) {
    writer.element();
    writer.text(key);
    writer.colon();
}

} // namespace json

} // namespace marrowbox
