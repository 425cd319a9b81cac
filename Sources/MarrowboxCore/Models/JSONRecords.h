#pragma once

#include "Models/JSONScalars.h"
#include "Models/Shared.h"

#include <algorithm>
#include <array>
#include <boost/describe/members.hpp>
#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>
#include <map>
#include <vector>

namespace marrowbox {

template <typename Value>
inline constexpr JSONTypeOf<Value> jsonTypeOf{};

template <typename Value>
inline constexpr bool isOptional = false;
template <typename Value>
inline constexpr bool isOptional<std::optional<Value>> = true;

/// The described fields of a record, as a list of Boost.Describe's descriptors.
template <typename Record>
using DescribedFields = boost::describe::describe_members<Record, boost::describe::mod_public>;

template <typename Record>
inline constexpr std::size_t fieldCount = boost::mp11::mp_size<DescribedFields<Record>>::value;

/// Positions of a record's fields in the order of their names, which is the order on disk.
template <typename Record>
constexpr auto fieldsByName() {
    std::array<std::string_view, fieldCount<Record>> names{};
    boost::mp11::mp_for_each<boost::mp11::mp_iota_c<fieldCount<Record>>>([&](auto position) {
        names[position] = boost::mp11::mp_at_c<DescribedFields<Record>, position>::name;
    });
    std::array<std::size_t, fieldCount<Record>> order{};
    for (std::size_t position = 0; position < order.size(); ++position)
        order[position] = position;
    std::sort(order.begin(), order.end(), [&](auto left, auto right) { return names[left] < names[right]; });
    return order;
}

/// The type of a field by its position.
template <typename Record, std::size_t Position>
using FieldType =
    std::remove_cvref_t<decltype(std::declval<Record>().*
                                 boost::mp11::mp_at_c<DescribedFields<Record>, Position>::pointer)>;

template <typename Record>
class JSONTypeOf final : public JSONType {
  public:
    std::string_view expectation() const override { return "an object"; }

    JSONFrame openObject(void* target) const override { return {.target = target, .type = this}; }

    JSONSlot member(JSONFrame& frame, std::string_view key) const override {
        std::uint32_t position = frame.nextField;
        if (position >= fields.size() || fields[position].key != key) {
            position = 0;
            while (position < fields.size() && fields[position].key != key)
                ++position;
            if (position == fields.size())
                return {nullptr, &ignoredJSONType()};
        }
        const std::uint32_t bit = 1U << position;
        frame.key = fields[position].key;
        if ((frame.seenFields & bit) != 0)
            throw Mismatch();
        frame.seenFields |= bit;
        frame.nextField = position + 1;
        return {fields[position].address(frame.target), fields[position].type,
                JSONRules<Record>::everyKeyMayBeMissing};
    }

    std::optional<std::string_view> missingKey(const JSONFrame& frame) const override {
        const std::uint32_t missing = requiredFields & ~frame.seenFields;
        if (missing == 0)
            return std::nullopt;
        return fields[static_cast<std::size_t>(std::countr_zero(missing))].key;
    }

  private:
    struct Field {
        std::string_view key;
        const JSONType* type;
        void* (*address)(void*);
        bool isRequired;
    };

    template <std::size_t Position>
    static constexpr Field describedField() {
        using Descriptor = boost::mp11::mp_at_c<DescribedFields<Record>, Position>;
        using Value = FieldType<Record, Position>;
        return {Descriptor::name, &jsonTypeOf<Value>,
                [](void* record) -> void* { return &(static_cast<Record*>(record)->*Descriptor::pointer); },
                !isOptional<Value> && !JSONRules<Record>::everyKeyMayBeMissing};
    }

    template <std::size_t... Index>
    static constexpr auto sortedFields(std::index_sequence<Index...>) {
        return std::array<Field, sizeof...(Index)>{describedField<fieldsByName<Record>()[Index]>()...};
    }

    static constexpr auto fields = sortedFields(std::make_index_sequence<fieldCount<Record>>());
    static_assert(fields.size() <= 32, "a frame remembers 32 fields");
    static constexpr std::uint32_t requiredFields = [] {
        std::uint32_t bits = 0;
        for (std::size_t position = 0; position < fields.size(); ++position)
            bits |= fields[position].isRequired ? 1U << position : 0;
        return bits;
    }();
};

template <typename Value>
class JSONTypeOf<std::optional<Value>> final : public JSONType {
  public:
    std::string_view expectation() const override { return jsonTypeOf<Value>.expectation(); }
    void null(void* target) const override { static_cast<std::optional<Value>*>(target)->reset(); }
    void boolean(void* target, bool value) const override { jsonTypeOf<Value>.boolean(made(target), value); }
    void number(void* target, const JSONNumber& value) const override {
        jsonTypeOf<Value>.number(made(target), value);
    }
    void string(void* target, std::string_view value, JSONSharing* sharing) const override {
        jsonTypeOf<Value>.string(made(target), value, sharing);
    }
    JSONFrame openObject(void* target) const override { return jsonTypeOf<Value>.openObject(made(target)); }
    JSONFrame openList(void* target) const override { return jsonTypeOf<Value>.openList(made(target)); }

  private:
    static void* made(void* target) {
        auto& optional = *static_cast<std::optional<Value>*>(target);
        if constexpr (std::is_same_v<Value, ObjectHash>)
            return &optional.emplace(std::string_view());
        else
            return &optional.emplace();
    }
};

template <typename Value>
class JSONTypeOf<std::vector<Value>> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a list"; }
    JSONFrame openList(void* target) const override {
        static_cast<std::vector<Value>*>(target)->clear();
        return {.target = target, .type = this};
    }
    JSONSlot element(JSONFrame& frame) const override {
        return {&static_cast<std::vector<Value>*>(frame.target)->emplace_back(), &jsonTypeOf<Value>};
    }
};

/// A list of shared records reads each element into a scratch record, and then holds the one equal record
/// that the reading has met before, where there is one.
template <typename Record>
class JSONTypeOf<std::vector<Shared<Record>>> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a list"; }
    JSONFrame openList(void* target) const override {
        static_cast<std::vector<Shared<Record>>*>(target)->clear();
        return {.target = target, .type = this, .scratch = std::make_shared<Record>()};
    }
    JSONSlot element(JSONFrame& frame) const override { return {frame.scratch.get(), &jsonTypeOf<Record>}; }
    void elementDone(JSONFrame& frame, JSONSharing* sharing) const override {
        auto& list = *static_cast<std::vector<Shared<Record>>*>(frame.target);
        auto& record = *static_cast<Record*>(frame.scratch.get());
        if (sharing != nullptr)
            list.push_back(sharing->shared(std::move(record)));
        else
            list.emplace_back(std::move(record));
        record = Record();
    }
};

template <typename Value>
class JSONTypeOf<std::map<std::string, Value>> final : public JSONType {
  public:
    std::string_view expectation() const override { return "an object"; }
    JSONFrame openObject(void* target) const override {
        static_cast<std::map<std::string, Value>*>(target)->clear();
        return {.target = target, .type = this};
    }
    JSONSlot member(JSONFrame& frame, std::string_view key) const override {
        auto& map = *static_cast<std::map<std::string, Value>*>(frame.target);
        const auto [place, isNew] = map.try_emplace(std::string(key));
        if (!isNew)
            throw Mismatch();
        return {&place->second, &jsonTypeOf<Value>};
    }
};

} // namespace marrowbox
