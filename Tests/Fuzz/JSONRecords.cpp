// Every record that is read from a file or from the network: what can be read can be written, and says the
// same when it is read again. The first byte chooses the record.
#include "Credentials/CredentialDocument.h"
#include "DriveAPI/DriveRequests.h"
#include "GoogleOAuth/GoogleAuth.h"
#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "Models/AppConfiguration.h"
#include "Models/BackupError.h"
#include "Models/JSONReader.h"
#include "Models/JSONWriter.h"
#include "Models/Snapshot.h"
#include "Platform/Files.h"
#include "Require.h"
#include "SnapshotMount/MountRecords.h"

#include <array>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <sys/mman.h>

namespace {

using namespace marrowbox;

template <typename Record>
void readAndWrite(std::string_view text) {
    std::optional<Record> record;
    try {
        record = decodeJSON<Record>(text);
    } catch (const JSONDecodingError&) {
        return;
    } catch (const BackupError&) { // a value that only a sentence refuses, such as an unknown mail service
        return;
    }
    for (const auto style : {JSONStyle::compact, JSONStyle::pretty}) {
        const std::string written = encodeJSON(*record, style);
        fuzz::require(encodeJSON(decodeJSON<Record>(written), style) == written);
    }
}

/// Of the registry, which has a writer of its own.
void readAndWriteMounts(std::string_view text) {
    std::optional<MountRegistry> registry;
    try {
        registry = decodeJSON<MountRegistry>(text);
    } catch (const JSONDecodingError&) {
        return;
    }
    fuzz::require(decodeJSON<MountRegistry>(encodeMountRegistry(*registry)) == registry);
}

void readAndWriteMarker(std::string_view text) {
    std::optional<MountEntry> marker;
    try {
        marker = decodeJSON<MountEntry>(text);
    } catch (const JSONDecodingError&) {
        return;
    }
    fuzz::require(decodeJSON<MountEntry>(encodeMountMarker(*marker)) == marker);
}

/// A file in memory, by a path under which it can be opened.
class NamedBytes {
  public:
    explicit NamedBytes(std::string_view bytes) : file_(::memfd_create("bytes", MFD_CLOEXEC)) {
        fuzz::require(static_cast<bool>(file_));
        writeAll(file_, bytes);
    }
    fs::path path() const { return "/proc/self/fd/" + std::to_string(file_.number()); }

  private:
    Descriptor file_;
};

/// Runs a coroutine to its end, which may be a refusal.
void runOrRefuse(auto work) {
    asio::io_context context;
    asio::co_spawn(context, std::move(work), [](std::exception_ptr thrown, auto&&...) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const JSONDecodingError&) {
        } catch (const BackupError&) {
        }
    });
    context.run();
}

HTTP serviceThatAnswers(std::string_view text) {
    const auto send = [](std::string body) -> asio::awaitable<HTTPResponse> {
        co_return HTTPResponse{.status = 200, .retryAfter = {}, .body = std::move(body)};
    };
    return HTTP([send, text](auto, auto) { return send(std::string(text)); },
                [](auto, auto) -> asio::awaitable<void> { co_return; });
}

constexpr Date now{800'000'000};

void readClientFile(std::string_view text) {
    try {
        const NamedBytes file(text);
        fuzz::require(!OAuthClient::load(file.path()).client_id.empty());
    } catch (const JSONDecodingError&) {
    } catch (const BackupError&) {
    }
}

void readTokenAnswer(std::string_view text) {
    const OAuthToken before{"access", "refresh", now, "scope"};
    runOrRefuse(GoogleAuth::exchange(serviceThatAnswers(text), {}, std::nullopt, [] { return now; }, {}));
    runOrRefuse(GoogleAuth::exchange(serviceThatAnswers(text), {}, before, [] { return now; }, {}));
}

/// Of an account that grants nothing, so that nothing is stored.
void readProfile(std::string_view text) {
    asio::io_context context;
    const GoogleAuth auth(
        {}, serviceThatAnswers(text), AppCredentials("/nonexistent/Credentials"), [] { return now; },
        context.get_executor());
    bool isStored = false;
    asio::co_spawn(context, auth.save({"access", "refresh", now, "openid"}, {}),
                   [&](const std::exception_ptr& thrown, const GoogleAccount&) { isStored = !thrown; });
    context.run();
    fuzz::require(!isStored);
}

constexpr std::array readers = {readAndWrite<Snapshot>,
                                readAndWrite<AppConfiguration>,
                                readAndWrite<CredentialDocument>,
                                readAndWriteMounts,
                                readAndWriteMarker,
                                readAndWrite<OAuthToken>,
                                readAndWrite<OAuthClient>,
                                readAndWrite<DriveFile>,
                                readAndWrite<DriveRequests::DrivePage>,
                                readClientFile,
                                readTokenAnswer,
                                readProfile};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    if (count == 0)
        return 0;
    // Digits begin the seeds, so that a person can read them.
    const auto choice = static_cast<std::size_t>(static_cast<unsigned char>(bytes[0] - '0'));
    readers[choice % readers.size()]({bytes + 1, count - 1});
    return 0;
}
