#include "Beside/DriveRoad.h"

#include "Beside/OurJobs.h"
#include "Beside/Watched.h"
#include "Measuring/Command.h"
#include "Measuring/StoredFiles.h"
#include "Models/JSONFile.h"
#include "Processes/RcloneCommand.h"
#include "Processes/RcloneDriveSource.h"

#include <boost/asio/thread_pool.hpp>
#include <cstdio>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

const std::string accountID = "1";

OAuthClient client() {
    const sandbox::ClientIdentity known;
    return {known.id, known.secret, known.project};
}

fs::path authorityIn(const fs::path& folder) {
    return folder / "authority.pem";
}

AppCredentials credentialsIn(const fs::path& folder) {
    return AppCredentials(folder / "Credentials");
}

void fill(sandbox::Drive& drive, const std::string& top, const DriveRoad::Shape& shape) {
    std::string folder;
    for (std::size_t number = 0; number < shape.files + shape.largeFiles; ++number) {
        const fs::path path = treePath(number);
        if (number % 50 == 0)
            folder = drive.addFolder(top, path.parent_path().string());
        const std::size_t size = number < shape.files ? shape.fileSize : shape.largeSize;
        drive.addFile(folder, path.filename().string(), contentOf(number, size));
    }
}

/// The variables as a shell sets them for one command.
std::string asAssignments(const std::map<std::string, std::string>& variables) {
    std::string text;
    for (const auto& [name, value] : variables)
        text += name + "=" + oneWord(value) + " ";
    return text;
}

} // namespace

std::string DriveRoad::Shape::words() const {
    char text[120];
    std::snprintf(text, sizeof text, "%zu files of %zu KB and %zu of %zu MB", files, fileSize >> 10,
                  largeFiles, largeSize >> 20);
    return text;
}

DriveRoad::DriveRoad(fs::path folder, Shape shape) : folder_(std::move(folder)) {
    fs::create_directories(folder_);
    source_.id = server_.drive().addFolder("root", "Source");
    fill(server_.drive(), source_.id, shape);
    server_.writeAuthority(authorityIn(folder_));
    const sandbox::SandboxToken issued = server_.identity().issueToken();
    const OAuthToken token{issued.accessToken, issued.refreshToken, systemClock()() + 3599, issued.scope};
    credentialsIn(folder_).save(encodeJSON(token, JSONStyle::compact), "google." + accountID);
    auto variables = RcloneCommand::environment(client(), token, source_);
    variables["RCLONE_CONFIG_MARROW_ROOT_FOLDER_ID"] = source_.id;
    for (const auto& [name, value] : server_.environment(authorityIn(folder_)))
        variables[name] = value;
    environment_ = asAssignments(variables);
}

std::string DriveRoad::backup(const fs::path& destination) const {
    return ourselves({"fetch", folder_, server_.proxyURL(), source_.id, destination});
}

std::string DriveRoad::copy(const fs::path& target, const std::string& flags) const {
    // Ours begins with the backend's command and ends with what parts flags and items.
    const auto ours = RcloneCommand::arguments({});
    std::string command = environment_ + "rclone copy marrow: " + quoted(target);
    for (std::size_t index = 3; index + 1 < ours.size(); ++index)
        command += " " + oneWord(ours[index]);
    return command + " " + flags;
}

void DriveRoad::backUp(const std::vector<std::string>& arguments) {
    const fs::path folder = arguments.at(0);
    HTTPSettings settings;
    settings.certificateFile = authorityIn(folder);
    settings.proxy = arguments.at(1);
    ProcessSurroundings surroundings = ProcessSurroundings::ofThisProcess();
    surroundings.environment["HTTPS_PROXY"] = settings.proxy.value();
    surroundings.environment["SSL_CERT_FILE"] = authorityIn(folder);
    const auto rclone = RcloneDriveSource::locate();
    if (!rclone)
        throw std::runtime_error("rclone is not installed.");

    asio::thread_pool pool(2); // outlives the session, whose thread posts to it
    HTTPSession session(settings);
    const auto auth = std::make_shared<GoogleAuth>(client(), HTTP(session, timerWait()),
                                                   credentialsIn(folder), systemClock(), pool.get_executor());
    DriveLocation source;
    source.id = arguments.at(2);
    makeOurs(arguments.at(3));
    backUpOurs(std::make_shared<RcloneDriveSource>(DriveAPI{auth, accountID}, source, *rclone, surroundings),
               arguments.at(3));
}

} // namespace marrowbox::bench
