// The list of mounts as the system's tool tells it, in which every user of the machine has his lines: it is
// refused as a whole, or names an image and a place for each mount. What is deleted rests on it.
#include "Models/BackupError.h"
#include "Require.h"
#include "SnapshotMount/SquashfsTool.h"

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    constexpr uid_t user = 1000;
    try {
        for (const Attachment& mount : SquashfsTool::inventory({bytes, count}, user))
            fuzz::require(!mount.image.empty() && mount.mountPoint && !mount.mountPoint->empty());
    } catch (const BackupError&) {
    }
    return 0;
}
