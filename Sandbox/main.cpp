// The simulated Google services as a program of their own, for the demonstration and for trying things by
// hand.
#include "Platform/Files.h"
#include "Sandbox/DemoTree.h"
#include "Sandbox/SandboxServer.h"

#include <boost/json.hpp>
#include <charconv>
#include <csignal>
#include <cstdio>

namespace marrowbox::sandbox {

namespace {

constexpr std::string_view usage =
    R"(marrowbox-sandbox: simulated Google services behind an HTTPS proxy on 127.0.0.1

  --port N            the proxy's port (default: a free one)
  --authority FILE    writes the certificate that clients must trust
  --client FILE       writes the OAuth client as a person downloads it
  --token FILE        writes a token as after a sign-in
  --generated F N     adds the folder "Generated" of F folders with N files each
  --consent-page      asks on a page instead of granting at once
  --ready FILE        writes the proxy's address when all else is done

Then run a client with HTTPS_PROXY at that address and SSL_CERT_FILE at the certificate. SIGUSR1 changes the
source as its owners might; SIGINT or SIGTERM ends.
)";

struct Arguments {
    std::map<std::string, std::string> files;
    std::uint16_t port = 0;
    std::optional<GeneratedTree> generated;
    bool showsConsentPage = false;
};

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() && !text.empty();
}

std::optional<Arguments> parsed(const std::vector<std::string>& given) {
    Arguments arguments;
    for (std::size_t index = 0; index < given.size(); ++index) {
        const std::string& flag = given[index];
        const std::size_t left = given.size() - index - 1;
        if (flag == "--consent-page") {
            arguments.showsConsentPage = true;
        } else if (flag == "--port" && left >= 1) {
            if (!readNumber(given[++index], arguments.port))
                return std::nullopt;
        } else if (flag == "--generated" && left >= 2) {
            GeneratedTree& tree = arguments.generated.emplace();
            if (!readNumber(given[++index], tree.folders) || !readNumber(given[++index], tree.filesPerFolder))
                return std::nullopt;
        } else if ((flag == "--authority" || flag == "--client" || flag == "--token" || flag == "--ready") &&
                   left >= 1) {
            arguments.files[flag] = given[++index];
        } else {
            return std::nullopt;
        }
    }
    return arguments;
}

/// The file appears whole or not at all, since a script may wait for it.
void publish(const Arguments& arguments, const std::string& flag, const std::string& text) {
    const auto path = arguments.files.find(flag);
    if (path == arguments.files.end())
        return;
    AtomicFile file(fs::absolute(path->second));
    writeAll(file.descriptor(), text);
    file.publish();
}

std::string tokenText(const SandboxToken& token) {
    return boost::json::serialize(boost::json::object{{"access_token", token.accessToken},
                                                      {"refresh_token", token.refreshToken},
                                                      {"expires_in", token.lifetime.count()},
                                                      {"scope", token.scope},
                                                      {"token_type", "Bearer"}});
}

/// The signals that steer the program, kept for sigwait by every thread that is started from now on.
sigset_t blockedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1})
        sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int run(const Arguments& arguments) {
    const sigset_t signals = blockedSignals();
    SandboxServer server({.port = arguments.port});
    const DemoTree tree = demoTree(server.drive());
    if (arguments.generated)
        server.drive().addGenerated("root", "Generated", *arguments.generated);
    if (arguments.showsConsentPage)
        server.identity().setSignIn({.consent = ConsentAnswer::page});
    publish(arguments, "--authority", server.authorityPEM());
    publish(arguments, "--client", server.identity().client().fileText());
    publish(arguments, "--token", tokenText(server.identity().issueToken()));
    publish(arguments, "--ready", server.proxyURL());
    std::printf("%s\n", server.proxyURL().c_str());
    std::fflush(stdout);
    int signal = 0;
    while (::sigwait(&signals, &signal) == 0 && signal == SIGUSR1)
        changeDemoTree(server.drive(), tree);
    return 0;
}

} // namespace

} // namespace marrowbox::sandbox

int main(int count, char** values) {
    const auto arguments = marrowbox::sandbox::parsed({values + 1, values + count});
    if (!arguments) {
        std::fputs(marrowbox::sandbox::usage.data(), stderr);
        return 2;
    }
    try {
        return marrowbox::sandbox::run(*arguments);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "marrowbox-sandbox: %s\n", failure.what());
        return 1;
    }
}
