// Every record that is read from a file or from the network: what can be read can be written, and says the
// same when it is read again. The first byte chooses the record.
#include "Credentials/CredentialDocument.h"
#include "DriveAPI/DriveRequests.h"
#include "GoogleOAuth/OAuthClient.h"
#include "GoogleOAuth/OAuthToken.h"
#include "Models/AppConfiguration.h"
#include "Models/BackupError.h"
#include "Models/JSONReader.h"
#include "Models/JSONWriter.h"
#include "Models/Snapshot.h"
#include "Require.h"
#include "SnapshotMount/MountRecords.h"

#include <array>

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

constexpr std::array readers = {readAndWrite<Snapshot>,
                                readAndWrite<AppConfiguration>,
                                readAndWrite<CredentialDocument>,
                                readAndWriteMounts,
                                readAndWriteMarker,
                                readAndWrite<OAuthToken>,
                                readAndWrite<OAuthClient>,
                                readAndWrite<DriveFile>,
                                readAndWrite<DriveRequests::DrivePage>};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    if (count == 0)
        return 0;
    // Digits begin the seeds, so that a person can read them.
    const auto choice = static_cast<std::size_t>(static_cast<unsigned char>(bytes[0] - '0'));
    readers[choice % readers.size()]({bytes + 1, count - 1});
    return 0;
}
