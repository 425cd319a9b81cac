#pragma once

#include <boost/describe/enumerators.hpp>
#include <boost/mp11/algorithm.hpp>
#include <optional>
#include <string_view>

namespace marrowbox {

/// Where a record departs from the rule that a key is required unless its field is optional.
template <typename Record>
struct JSONRules {
    static constexpr bool everyKeyMayBeMissing = false;
};

/// The case of an enumeration by its stored name; absent when there is none of that name.
template <typename Enumeration>
struct JSONEnumeration {
    static std::optional<Enumeration> fromName(std::string_view name) {
        std::optional<Enumeration> found;
        boost::mp11::mp_for_each<boost::describe::describe_enumerators<Enumeration>>([&](auto enumerator) {
            if (name == enumerator.name)
                found = enumerator.value;
        });
        return found;
    }
};

/// The stored name of an enumeration's case.
template <typename Enumeration>
constexpr std::string_view enumerationName(Enumeration value) {
    std::string_view name;
    boost::mp11::mp_for_each<boost::describe::describe_enumerators<Enumeration>>([&](auto enumerator) {
        if (value == enumerator.value)
            name = enumerator.name;
    });
    return name;
}

} // namespace marrowbox
