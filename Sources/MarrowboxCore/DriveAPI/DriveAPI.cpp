#include "DriveAPI/DriveAPI.h"

#include "DriveAPI/DriveNames.h"
#include "DriveAPI/DriveRequests.h"
#include "DriveAPI/DriveWalk.h"
#include "DriveAPI/PageSequence.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/UnicodeText.h"

#include <iterator>

namespace marrowbox {

using DriveRequests::DrivePage;
using DriveRequests::FilePage;
using DriveRequests::Query;

namespace {

asio::awaitable<std::vector<DriveLocation>> listRoots(DriveAPI api, std::stop_token stop) {
    std::vector<DriveLocation> roots{{.id = "root", .name = "My Drive", .sharedDriveID = {}}};
    Query query = DriveRequests::drivesQuery();
    PageSequence pages;
    for (;;) {
        const std::string body = co_await DriveRequests::fetch(api, "drives", query, stop);
        DrivePage page = decodeJSON<DrivePage>(body);
        pages.add(page);
        for (DriveLocation& drive : page.drives) {
            drive.sharedDriveID = drive.id;
            roots.push_back(std::move(drive));
        }
        if (!page.nextPageToken)
            co_return roots;
        query["pageToken"] = std::move(*page.nextPageToken);
    }
}

asio::awaitable<DriveFile> fetchFile(DriveAPI api, std::string id, std::stop_token stop) {
    if (!DriveNames::isIdentifier(id))
        throw BackupError("Invalid Google Drive item ID.");
    const std::string body = co_await DriveRequests::fetch(std::move(api), "files/" + id,
                                                           DriveRequests::fileQuery(), std::move(stop));
    co_return decodeJSON<DriveFile>(body);
}

asio::awaitable<std::vector<DriveFile>> listChildren(DriveAPI api, DriveLocation of, DriveItems items,
                                                     std::stop_token stop) {
    Query query = DriveRequests::childrenQuery(of, items);
    std::vector<DriveFile> files;
    PageSequence pages;
    for (;;) {
        const std::string body = co_await DriveRequests::fetch(api, "files", query, stop);
        FilePage page = DriveRequests::filePage(body);
        pages.add(page);
        std::ranges::move(page.files, std::back_inserter(files));
        if (!page.nextPageToken)
            break;
        query["pageToken"] = std::move(*page.nextPageToken);
    }
    DriveNames::sort(files, NameOrder());
    co_return files;
}

asio::awaitable<std::vector<DriveLocation>> listFolders(DriveAPI api, DriveLocation in,
                                                        std::stop_token stop) {
    std::vector<DriveFile> found =
        co_await listChildren(std::move(api), in, DriveItems::foldersOnly, std::move(stop));
    std::vector<DriveLocation> folders;
    folders.reserve(found.size());
    for (DriveFile& file : found)
        folders.push_back({file.id.string(), std::move(file.name), in.sharedDriveID});
    co_return folders;
}

} // namespace

// Each takes a copy of the value along, which may go away while the work is under way.

asio::awaitable<std::vector<DriveLocation>> DriveAPI::roots(std::stop_token stop) const {
    return listRoots(*this, std::move(stop));
}

asio::awaitable<DriveFile> DriveAPI::file(std::string id, std::stop_token stop) const {
    return fetchFile(*this, std::move(id), std::move(stop));
}

asio::awaitable<std::vector<DriveFile>> DriveAPI::children(DriveLocation of, DriveItems items,
                                                           std::stop_token stop) const {
    return listChildren(*this, std::move(of), items, std::move(stop));
}

asio::awaitable<std::vector<DriveLocation>> DriveAPI::folders(DriveLocation in, std::stop_token stop) const {
    return listFolders(*this, std::move(in), std::move(stop));
}

asio::awaitable<std::vector<SourceEntry>> DriveAPI::inventory(DriveLocation of, std::stop_token stop) const {
    return DriveWalk::run(std::make_shared<DriveWalk>(*this, std::move(of), std::move(stop)));
}

std::string DriveAPI::exportedName(const DriveFile& file) {
    return DriveNames::exportedName(file);
}

} // namespace marrowbox
