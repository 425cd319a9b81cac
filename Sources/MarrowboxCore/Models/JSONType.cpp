#include "Models/JSONType.h"

namespace marrowbox {

void JSONType::null(void*) const {
    throw Mismatch();
}
void JSONType::boolean(void*, bool) const {
    throw Mismatch();
}
void JSONType::number(void*, const JSONNumber&) const {
    throw Mismatch();
}
void JSONType::string(void*, std::string_view, JSONSharing*) const {
    throw Mismatch();
}
JSONFrame JSONType::openObject(void*) const {
    throw Mismatch();
}
JSONFrame JSONType::openList(void*) const {
    throw Mismatch();
}
JSONSlot JSONType::member(JSONFrame&, std::string_view) const {
    throw Mismatch();
}
JSONSlot JSONType::element(JSONFrame&) const {
    throw Mismatch();
}
void JSONType::elementDone(JSONFrame&, JSONSharing*) const {
}
std::optional<std::string_view> JSONType::missingKey(const JSONFrame&) const {
    return std::nullopt;
}

namespace {

class IgnoredType final : public JSONType {
  public:
    std::string_view expectation() const override { return "anything"; }
    void null(void*) const override {}
    void boolean(void*, bool) const override {}
    void number(void*, const JSONNumber&) const override {}
    void string(void*, std::string_view, JSONSharing*) const override {}
    JSONFrame openObject(void*) const override { return {.type = this}; }
    JSONFrame openList(void*) const override { return {.type = this}; }
    JSONSlot member(JSONFrame&, std::string_view) const override { return {nullptr, this}; }
    JSONSlot element(JSONFrame&) const override { return {nullptr, this}; }
};

constexpr IgnoredType ignoredType;

} // namespace

const JSONType& ignoredJSONType() {
    return ignoredType;
}

} // namespace marrowbox
