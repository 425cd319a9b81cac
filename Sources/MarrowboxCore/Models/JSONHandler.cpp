#include "Models/JSONHandler.h"

namespace marrowbox {

bool JSONHandler::on_object_begin(ErrorCode&) {
    const JSONSlot slot = takeSlot();
    hand(slot, [&] { frames_.push_back(slot.type->openObject(slot.target)); });
    return true;
}

bool JSONHandler::on_object_end(std::size_t, ErrorCode&) {
    const auto missing = frames_.back().type->missingKey(frames_.back());
    if (missing) {
        frames_.back().key = *missing;
        throw JSONDecodingError("“" + place() + "” is missing.");
    }
    frames_.pop_back();
    return valueDone();
}

bool JSONHandler::on_array_begin(ErrorCode&) {
    const JSONSlot slot = takeSlot();
    hand(slot, [&] { frames_.push_back(slot.type->openList(slot.target)); });
    frames_.back().isList = true;
    return true;
}

bool JSONHandler::on_array_end(std::size_t, ErrorCode&) {
    frames_.pop_back();
    return valueDone();
}

bool JSONHandler::on_key(Text last, std::size_t, ErrorCode&) {
    const std::string_view key = whole(last);
    JSONFrame& frame = frames_.back();
    try {
        pending_ = frame.type->member(frame, key);
    } catch (const JSONType::Mismatch&) {
        throw JSONDecodingError("The key “" + std::string(key) + "” stands twice in one object.");
    }
    kept_.clear();
    return true;
}

bool JSONHandler::on_string(Text last, std::size_t, ErrorCode&) {
    const std::string_view value = whole(last);
    const JSONSlot slot = takeSlot();
    hand(slot, [&] { slot.type->string(slot.target, value, sharing_); });
    kept_.clear();
    return valueDone();
}

bool JSONHandler::on_bool(bool value, ErrorCode&) {
    const JSONSlot slot = takeSlot();
    hand(slot, [&] { slot.type->boolean(slot.target, value); });
    return valueDone();
}

bool JSONHandler::on_null(ErrorCode&) {
    const JSONSlot slot = takeSlot();
    if (!slot.nullIsAbsence)
        hand(slot, [&] { slot.type->null(slot.target); });
    return valueDone();
}

bool JSONHandler::keep(Text part) {
    kept_.append(part.data(), part.size());
    return true;
}

std::string_view JSONHandler::whole(Text last) {
    if (kept_.empty())
        return {last.data(), last.size()};
    keep(last);
    return kept_;
}

bool JSONHandler::number(std::optional<std::int64_t> integer, Text last) {
    const JSONNumber value{whole(last), integer};
    const JSONSlot slot = takeSlot();
    hand(slot, [&] { slot.type->number(slot.target, value); });
    kept_.clear();
    return valueDone();
}

JSONSlot JSONHandler::takeSlot() {
    if (!frames_.empty() && frames_.back().isList)
        return frames_.back().type->element(frames_.back());
    return pending_;
}

bool JSONHandler::valueDone() {
    if (!frames_.empty() && frames_.back().isList) {
        frames_.back().type->elementDone(frames_.back(), sharing_);
        ++frames_.back().position;
    }
    return true;
}

template <typename Take>
void JSONHandler::hand(const JSONSlot& slot, Take take) {
    try {
        take();
    } catch (const JSONType::Mismatch&) {
        const std::string where = place();
        throw JSONDecodingError((where.empty() ? "The file" : "“" + where + "”") + " should be " +
                                std::string(slot.type->expectation()) + ".");
    }
}

std::string JSONHandler::place() const {
    std::string text;
    for (const JSONFrame& frame : frames_) {
        if (frame.isList)
            text += "[" + std::to_string(frame.position) + "]";
        else if (!frame.key.empty())
            text += (text.empty() ? "" : ".") + std::string(frame.key);
    }
    return text;
}

} // namespace marrowbox
