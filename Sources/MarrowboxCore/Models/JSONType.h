#pragma once

#include "Models/JSONSharing.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace marrowbox {

/// A text that is not JSON, or JSON that is not the wanted record. It names the place and never quotes a
/// value, which may be a secret.
class JSONDecodingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A number as it stands in the text, and its value where it is a whole one.
struct JSONNumber {
    std::string_view text;
    std::optional<std::int64_t> integer;
};

class JSONType;

/// Where the next value of a decoding goes: an object of a C++ type and how that type reads.
struct JSONSlot {
    void* target = nullptr;
    const JSONType* type = nullptr;
    bool nullIsAbsence = false;
};

/// An object or a list that is being read.
struct JSONFrame {
    void* target = nullptr;
    const JSONType* type = nullptr;
    std::uint32_t seenFields = 0; ///< A record's fields so far, a bit each.
    std::uint32_t nextField = 0;  ///< The one to expect, since writers sort their keys.
    std::size_t position = 0;     ///< Of the list's next element.
    std::string_view key = {};    ///< Of the member being read, where its name outlives the reading.
    bool isList = false;
    std::shared_ptr<void> scratch = {}; ///< What a list reads into before it shares the element.
};

/// How a C++ type takes the pieces of a JSON text. One constant object a type; the defaults refuse
/// everything. Stateless, so any thread.
class JSONType {
  public:
    /// Thrown when a type meets a value that it is not; the reader adds the place.
    struct Mismatch {};

    /// The words of the refusal, such as "a number".
    virtual std::string_view expectation() const = 0;
    virtual void null(void* target) const;
    virtual void boolean(void* target, bool value) const;
    virtual void number(void* target, const JSONNumber& value) const;
    virtual void string(void* target, std::string_view value, JSONSharing* sharing) const;

    /// Begins an object or a list: the frame in which its members go.
    virtual JSONFrame openObject(void* target) const;
    virtual JSONFrame openList(void* target) const;
    /// Where the value of this member goes.
    virtual JSONSlot member(JSONFrame& frame, std::string_view key) const;
    /// Where the next element goes, and its end.
    virtual JSONSlot element(JSONFrame& frame) const;
    virtual void elementDone(JSONFrame& frame, JSONSharing* sharing) const;
    /// The end of the object or list; names a required key that was missing.
    virtual std::optional<std::string_view> missingKey(const JSONFrame& frame) const;

  protected:
    ~JSONType() = default;
};

/// Takes any value and keeps nothing: the type of members that nobody asked for.
const JSONType& ignoredJSONType();

} // namespace marrowbox
