#pragma once

#include "Marrowbox/AppStore/StoreChanges.h"

#include <utility>

namespace marrowbox {

/// A field that screens read. Each change is announced before it takes effect, and again when it has.
template <typename Value>
class Published {
  public:
    /// The announcer outlives the field.
    Published(StoreChanges& announcer, StoreField field, Value initial = {})
        : announcer_(announcer), field_(field), value_(std::move(initial)) {}

    const Value& operator*() const { return value_; }
    const Value* operator->() const { return &value_; }

    void set(Value value) {
        change([&](Value& current) { current = std::move(value); });
    }
    /// Changes the value in place.
    template <typename Change>
    void change(Change apply) {
        emit announcer_.willChange(field_);
        apply(value_);
        emit announcer_.changed(field_);
    }

  private:
    StoreChanges& announcer_;
    StoreField field_;
    Value value_;
};

} // namespace marrowbox
