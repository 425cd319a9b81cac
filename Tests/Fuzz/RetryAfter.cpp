// Whatever a server asks for, the wait is from 0 to 30 seconds.
#include "GoogleOAuth/HTTP.h"
#include "Require.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    const std::string_view header(bytes, count);
    const auto seconds = HTTPRetry::seconds(header);
    fuzz::require(!seconds || !std::isnan(*seconds));
    for (int attempt = 0; attempt < HTTPRetry::attempts; ++attempt) {
        const auto wait = HTTPRetry::wait("GET", attempt, 429, header);
        fuzz::require(!wait || (wait->count() >= 0 && wait->count() <= 30));
    }
    return 0;
}
