#pragma once

#include "Models/JSONType.h"

#include <boost/json/basic_parser.hpp>
#include <string>
#include <vector>

namespace marrowbox {

/// Takes the events of Boost.JSON's parser and hands each value to the slot that waits for it.
class JSONHandler {
  public:
    static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

    JSONHandler(JSONSlot root, JSONSharing* sharing) : pending_(root), sharing_(sharing) {
        frames_.reserve(8);
    }

    using ErrorCode = boost::json::error_code;
    using Text = boost::json::string_view;

    bool on_document_begin(ErrorCode&) { return true; }
    bool on_document_end(ErrorCode&) { return true; }
    bool on_object_begin(ErrorCode&);
    bool on_object_end(std::size_t, ErrorCode&);
    bool on_array_begin(ErrorCode&);
    bool on_array_end(std::size_t, ErrorCode&);
    bool on_key_part(Text part, std::size_t, ErrorCode&) { return keep(part); }
    bool on_key(Text last, std::size_t, ErrorCode&);
    bool on_string_part(Text part, std::size_t, ErrorCode&) { return keep(part); }
    bool on_string(Text last, std::size_t, ErrorCode&);
    bool on_number_part(Text part, ErrorCode&) { return keep(part); }
    bool on_int64(std::int64_t value, Text last, ErrorCode&) { return number(value, last); }
    bool on_uint64(std::uint64_t, Text last, ErrorCode&) { return number(std::nullopt, last); }
    bool on_double(double, Text last, ErrorCode&) { return number(std::nullopt, last); }
    bool on_bool(bool value, ErrorCode&);
    bool on_null(ErrorCode&);
    bool on_comment_part(Text, ErrorCode&) { return true; }
    bool on_comment(Text, ErrorCode&) { return true; }

  private:
    bool keep(Text part);
    /// The text with its earlier parts, valid until the next event.
    std::string_view whole(Text last);
    bool number(std::optional<std::int64_t> integer, Text last);
    JSONSlot takeSlot();
    bool valueDone();
    template <typename Take>
    void hand(const JSONSlot& slot, Take take);
    /// Where the reading stands, such as "entries[3].size"; empty at the top.
    std::string place() const;

    std::vector<JSONFrame> frames_;
    JSONSlot pending_; ///< The root or a member's value.
    JSONSharing* sharing_;
    std::string kept_; ///< Parts of a text that the parser gives in pieces.
};

} // namespace marrowbox
