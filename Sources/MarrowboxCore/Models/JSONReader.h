#pragma once

#include "Models/JSONRecords.h"
#include "Platform/Descriptor.h"

#include <string_view>

namespace marrowbox {

/// Decodes one JSON text into the slot. Throws JSONDecodingError with the place of the fault.
void decodeJSONInto(JSONSlot slot, std::string_view text, JSONSharing* sharing);
/// The same from an open file, read in pieces, so that a manifest of any size needs room for its records
/// only.
void decodeJSONInto(JSONSlot slot, const Descriptor& file, JSONSharing* sharing);

/// The record that a JSON text says. Keys that the record does not have are ignored; a required key that is
/// missing, a value of another type, a key that stands twice and a text that is not JSON throw
/// JSONDecodingError. With a sharing, texts and entries that it has met before are not made again.
template <typename Record>
Record decodeJSON(std::string_view text, JSONSharing* sharing = nullptr) {
    Record record{};
    decodeJSONInto({&record, &jsonTypeOf<Record>}, text, sharing);
    return record;
}

template <typename Record>
Record decodeJSON(const Descriptor& file, JSONSharing* sharing = nullptr) {
    Record record{};
    decodeJSONInto({&record, &jsonTypeOf<Record>}, file, sharing);
    return record;
}

} // namespace marrowbox
