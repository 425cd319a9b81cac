#include "Platform/StandardStreams.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0)
            continue;
        // The system gives the lowest number that is free. It stays open in programs that are started.
        if (::open("/dev/null", O_RDWR) < 0)
            throw std::system_error(errno, std::generic_category(), "open /dev/null");
    }
}

} // namespace marrowbox
