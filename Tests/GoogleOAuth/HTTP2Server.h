#pragma once

#include "Platform/Descriptor.h"
#include "Support/ScratchFolder.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/types.h>

namespace marrowbox::test {

/// The nghttpd of the system, which lies off the path of ordinary users and speaks HTTP/2 alone, over TLS
/// with a certificate made for it.
class HTTP2Server {
  public:
    HTTP2Server();
    HTTP2Server(const HTTP2Server&) = delete;
    HTTP2Server& operator=(const HTTP2Server&) = delete;
    ~HTTP2Server();

    std::filesystem::path certificate() const { return folder_ / "certificate.pem"; }
    /// The address of a file that holds these words.
    std::string serve(const std::string& name, const std::string& words);
    /// Ends the server and gives what it has said about its connections and frames.
    std::string finishedLog();

  private:
    ScratchFolder folder_;
    pid_t process_ = -1;
    Descriptor output_;
    std::string log_;
    std::uint16_t port_ = 0;
};

} // namespace marrowbox::test
