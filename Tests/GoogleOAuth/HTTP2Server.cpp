#include "HTTP2Server.h"

#include "Platform/Files.h"

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <vector>

namespace marrowbox::test {

namespace {

/// A port that is free now. Another program may take it before the server does, which then says so.
std::uint16_t freePort() {
    const Descriptor probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* any = reinterpret_cast<sockaddr*>(&address);
    if (::bind(probe.number(), any, length) != 0 || ::getsockname(probe.number(), any, &length) != 0)
        throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

pid_t start(std::vector<std::string> arguments, int output) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    pid_t process = -1;
    const int failed = ::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0)
        throw std::system_error(failed, std::generic_category(), arguments[0]);
    return process;
}

void makeCertificate(const std::string& certificate, const std::string& key) {
    const Descriptor nowhere = openFile("/dev/null", O_WRONLY);
    const pid_t process =
        start({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
               "-days", "2", "-subj", "/CN=loopback", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
               key, "-out", certificate},
              nowhere.number());
    int status = 0;
    if (::waitpid(process, &status, 0) != process || status != 0)
        throw std::runtime_error("no certificate could be made");
}

} // namespace

HTTP2Server::HTTP2Server() : port_(freePort()) {
    const std::string key = folder_ / "key.pem";
    makeCertificate(certificate(), key);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe2");
    output_ = Descriptor(ends[0]);
    Descriptor input(ends[1]);
    // By itself it would keep its words to itself until it ends.
    process_ = start({"stdbuf", "-oL", "/usr/sbin/nghttpd", "--verbose", "--address=127.0.0.1",
                      "--htdocs=" + folder_.path().string(), std::to_string(port_), key, certificate()},
                     input.number());
    input.close();
    std::array<char, 4096> piece{};
    while (log_.find("listen 127.0.0.1") == std::string::npos) {
        const std::size_t count = readSome(output_, piece);
        if (count == 0)
            throw std::runtime_error("nghttpd did not start: " + log_);
        log_.append(piece.data(), count);
    }
}

HTTP2Server::~HTTP2Server() {
    if (process_ >= 0)
        finishedLog();
}

std::string HTTP2Server::serve(const std::string& name, const std::string& words) {
    writeAll(openFile(folder_ / name, O_WRONLY | O_CREAT | O_TRUNC), words);
    return "https://127.0.0.1:" + std::to_string(port_) + "/" + name;
}

std::string HTTP2Server::finishedLog() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
    log_ += readAll(output_);
    return log_;
}

} // namespace marrowbox::test
