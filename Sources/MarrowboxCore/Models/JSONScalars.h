#pragma once

#include "Models/ByteString.h"
#include "Models/JSONRules.h"
#include "Models/JSONType.h"
#include "Models/ObjectHash.h"
#include "Models/Uuid.h"
#include "Platform/Clock.h"

#include <type_traits>

namespace marrowbox {

/// The double that the text says exactly; absent when it is out of range.
std::optional<double> exactDouble(std::string_view text);

/// A whole number, also one that is written with a fraction of zero or an exponent.
std::optional<std::int64_t> wholeNumber(const JSONNumber& number);

/// How one C++ type reads; specialised for each scalar here, for containers and records in JSONRecords.h.
template <typename Value>
class JSONTypeOf;

template <>
class JSONTypeOf<bool> final : public JSONType {
  public:
    std::string_view expectation() const override { return "true or false"; }
    void boolean(void* target, bool value) const override { *static_cast<bool*>(target) = value; }
};

template <>
class JSONTypeOf<std::int64_t> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a whole number"; }
    void number(void* target, const JSONNumber& value) const override {
        const auto whole = wholeNumber(value);
        if (!whole)
            throw Mismatch();
        *static_cast<std::int64_t*>(target) = *whole;
    }
};

template <>
class JSONTypeOf<double> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a number"; }
    void number(void* target, const JSONNumber& value) const override {
        const auto exact = exactDouble(value.text);
        if (!exact)
            throw Mismatch();
        *static_cast<double*>(target) = *exact;
    }
};

template <>
class JSONTypeOf<Date> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a date, which is a number of seconds"; }
    void number(void* target, const JSONNumber& value) const override {
        const auto exact = exactDouble(value.text);
        if (!exact)
            throw Mismatch();
        static_cast<Date*>(target)->secondsSinceReference = *exact;
    }
};

template <>
class JSONTypeOf<std::string> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a text"; }
    void string(void* target, std::string_view value, JSONSharing*) const override {
        static_cast<std::string*>(target)->assign(value);
    }
};

template <>
class JSONTypeOf<SharedText> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a text"; }
    void string(void* target, std::string_view value, JSONSharing* sharing) const override {
        *static_cast<SharedText*>(target) = sharing != nullptr ? sharing->shared(value) : SharedText(value);
    }
};

template <>
class JSONTypeOf<ObjectHash> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a text"; }
    void string(void* target, std::string_view value, JSONSharing*) const override {
        *static_cast<ObjectHash*>(target) = ObjectHash(value);
    }
};

template <>
class JSONTypeOf<Uuid> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a UUID"; }
    void string(void* target, std::string_view value, JSONSharing*) const override;
};

template <>
class JSONTypeOf<ByteString> final : public JSONType {
  public:
    std::string_view expectation() const override { return "Base64 text"; }
    void string(void* target, std::string_view value, JSONSharing*) const override;
};

template <typename Value>
    requires std::is_enum_v<Value>
class JSONTypeOf<Value> final : public JSONType {
  public:
    std::string_view expectation() const override { return "one of the known names"; }
    void string(void* target, std::string_view value, JSONSharing*) const override {
        const auto known = JSONEnumeration<Value>::fromName(value);
        if (!known)
            throw Mismatch();
        *static_cast<Value*>(target) = *known;
    }
};

} // namespace marrowbox
