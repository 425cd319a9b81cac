// Inventory of 100,000 files in 2,000 folders from the simulated service, against curl fetching the same
// pages over one connection.
#include "DriveAPI/DriveAPI.h"
#include "Measuring/Measure.h"
#include "Models/JSONFile.h"
#include "Sandbox/SandboxServer.h"

#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <stdexcept>

namespace {

using namespace marrowbox;

constexpr std::size_t files = 100'000;
constexpr std::size_t folders = 2'000;

/// A folder of the benchmark's own, removed with the object.
struct Scratch {
    Scratch() {
        std::string name = (fs::temp_directory_path() / "marrowbox-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throwSystemError("mkdtemp", name);
        path = name;
    }
    ~Scratch() { removeTree(path); }
    fs::path path;
};

struct Services {
    sandbox::SandboxServer server;
    Scratch scratch;
    std::string accessToken;
    DriveLocation source;

    Services() {
        const sandbox::GeneratedTree tree{.folders = folders,
                                          .filesPerFolder = files / folders,
                                          .foldersPerFolder = 10,
                                          .distinctContents = 100};
        source.id = server.drive().addGenerated("root", "Tree", tree);
        server.writeAuthority(authority());
        const sandbox::SandboxToken token = server.identity().issueToken();
        accessToken = token.accessToken;
        const OAuthToken stored{token.accessToken, token.refreshToken, systemClock()() + 3599, token.scope};
        credentials().save(encodeJSON(stored, JSONStyle::compact), "google.1");
    }
    fs::path authority() const { return scratch.path / "authority.pem"; }
    AppCredentials credentials() const { return AppCredentials(scratch.path / "Credentials"); }
};

/// What curl needs to fetch each page that was asked for, one after the other over one connection.
void writeCurlConfiguration(Services& services, const fs::path& path) {
    std::string text = "silent\nshow-error\nfail\nproxy = \"" + services.server.proxyURL() +
                       "\"\ncacert = \"" + services.authority().string() +
                       "\"\nheader = \"Authorization: Bearer " + services.accessToken + "\"\n";
    for (const auto& request : services.server.requests().all())
        text += "url = \"https://" + request.host + request.target + "\"\n";
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), text);
}

int measure() {
    Services services;
    HTTPSettings settings;
    settings.certificateFile = services.authority();
    settings.proxy = services.server.proxyURL();
    HTTPSession session(settings);
    asio::thread_pool pool(2);
    const OAuthClient client{services.server.identity().client().id, {}, {}};
    const DriveAPI api{std::make_shared<GoogleAuth>(client, HTTP(session, timerWait()),
                                                    services.credentials(), systemClock(),
                                                    pool.get_executor()),
                       "1"};
    const auto takeInventory = [&] {
        const auto entries = asio::co_spawn(pool, api.inventory(services.source, {}), asio::use_future).get();
        if (entries.size() != files + folders)
            throw std::runtime_error("the inventory is not complete");
    };
    takeInventory();
    const fs::path configuration = services.scratch.path / "pages.curl";
    writeCurlConfiguration(services, configuration);
    const std::string command = "curl --config " + configuration.string() + " > /dev/null";
    const auto fetch = [&] {
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("curl could not fetch the pages");
    };
    const auto ratio = bench::compare(5, takeInventory, fetch);
    return bench::reportAtMost("inventory", ratio.ratio, 1.3, bench::describe(ratio));
}

} // namespace

int main() {
    return measure();
}
