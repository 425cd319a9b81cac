#include "Platform/RandomBytes.h"

#include <openssl/rand.h>

namespace marrowbox {

std::optional<std::string> randomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(count)) != 1)
        return std::nullopt;
    return bytes;
}

} // namespace marrowbox
