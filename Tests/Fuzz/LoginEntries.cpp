// The autostart entry, which a desktop's settings rewrite and anybody may edit: it is always read, and its
// marks survive being written by this program.
#include "Marrowbox/Platform/LoginEntry.h"
#include "Require.h"

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    const std::string text(bytes, count);
    const LoginEntry read = readLoginEntry(text);
    const LoginEntry again = readLoginEntry(loginEntryText("/usr/bin/marrowbox", read));
    fuzz::require(again.isHidden == read.isHidden && again.isEnabledByGnome == read.isEnabledByGnome);
    // A path with any bytes is one word of one line.
    if (text.find('\0') == std::string::npos && !text.empty())
        fuzz::require(execValue(text).find_first_of("\r\n") == std::string::npos);
    return 0;
}
