// The answers of the disk image tool: a whole document is read, anything else is refused.
#include "Require.h"
#include "SnapshotMount/PropertyList.h"

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    const std::string_view document(bytes, count);
    try {
        const PropertyList read = PropertyList::parse(document);
        fuzz::require(read == PropertyList::parse(document));
    } catch (const PropertyListError&) {
    }
    return 0;
}
