// The answers of the disk image tool: a whole document is read, anything else is refused, and so is a list of
// images that does not tell all of each.
#include "Models/BackupError.h"
#include "Require.h"
#include "SnapshotMount/HdiutilTool.h"
#include "SnapshotMount/PropertyList.h"

namespace {

/// Calls it; that it refuses is fine.
template <typename Read>
void readOrRefuse(Read read) {
    try {
        read();
    } catch (const marrowbox::PropertyListError&) {
    } catch (const marrowbox::BackupError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    const std::string_view document(bytes, count);
    readOrRefuse([&] {
        const PropertyList read = PropertyList::parse(document);
        fuzz::require(read == PropertyList::parse(document));
    });
    readOrRefuse([&] {
        for (const Attachment& image : HdiutilTool::inventory(document))
            fuzz::require(!image.image.empty());
    });
    readOrRefuse([&] { HdiutilTool::attachPoint(document); });
    return 0;
}
