#include "DriveAPI/DriveAPI.h"

#include "DriveAPI/DriveNames.h"
#include "DriveAPI/DriveTree.h"
#include "GoogleOAuth/WebEncoding.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"
#include "Platform/Cancellation.h"
#include "Platform/UnicodeText.h"

#include <map>
#include <numeric>

namespace marrowbox {

namespace {

using Query = std::map<std::string, std::string>;

constexpr std::string_view fileFields =
    "id,name,mimeType,version,modifiedTime,size,md5Checksum,trashed,driveId,capabilities(canDownload)";

struct FilePage {
    std::vector<DriveFile> files;
    std::optional<std::string> nextPageToken;
    std::optional<bool> incompleteSearch;
};

BOOST_DESCRIBE_STRUCT(FilePage, (), (files, nextPageToken, incompleteSearch))

struct DrivePage {
    std::vector<DriveLocation> drives;
    std::optional<std::string> nextPageToken;
};

BOOST_DESCRIBE_STRUCT(DrivePage, (), (drives, nextPageToken))

template <typename Record>
asio::awaitable<Record> get(DriveAPI api, std::string path, Query query, std::stop_token stop) {
    std::string url = "https://www.googleapis.com/drive/v3/" + path + "?" + WebEncoding::form(query);
    const std::string body =
        co_await api.auth->request(std::move(url), std::move(api.accountID), std::move(stop));
    co_return decodeJSON<Record>(body);
}

asio::awaitable<std::vector<DriveLocation>> listRoots(DriveAPI api, std::stop_token stop) {
    std::vector<DriveLocation> roots{{.id = "root", .name = "My Drive", .sharedDriveID = {}}};
    Query query{{"pageSize", "100"}, {"fields", "nextPageToken,drives(id,name)"}};
    for (;;) {
        DrivePage page = co_await get<DrivePage>(api, "drives", query, stop);
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
    Query query{{"fields", std::string(fileFields)}, {"supportsAllDrives", "true"}};
    DriveFile file =
        co_await get<DriveFile>(std::move(api), "files/" + id, std::move(query), std::move(stop));
    co_return file;
}

Query childrenQuery(const DriveLocation& of, DriveItems items) {
    std::string wanted = "'" + of.id + "' in parents and trashed = false";
    if (items == DriveItems::foldersOnly)
        wanted += " and mimeType = 'application/vnd.google-apps.folder'";
    Query query{
        {"q", std::move(wanted)},
        {"pageSize", "1000"},
        {"supportsAllDrives", "true"},
        {"includeItemsFromAllDrives", "true"},
        {"fields", "nextPageToken,incompleteSearch,files(" + std::string(fileFields) + ")"},
        {"corpora", of.sharedDriveID ? "drive" : "user"},
    };
    if (of.sharedDriveID)
        query.emplace("driveId", *of.sharedDriveID);
    return query;
}

void append(std::vector<DriveFile>& files, std::vector<DriveFile> page) {
    if (files.empty())
        files = std::move(page);
    else
        std::ranges::move(page, std::back_inserter(files));
}

/// Equal names keep the service's order.
void sortByName(std::vector<DriveFile>& files, const NameOrder& order) {
    std::vector<std::uint32_t> places(files.size());
    std::iota(places.begin(), places.end(), 0);
    std::ranges::sort(places, [&](std::uint32_t left, std::uint32_t right) {
        const int compared = order.compare(files[left].name, files[right].name);
        return compared != 0 ? compared < 0 : left < right;
    });
    std::vector<DriveFile> sorted;
    sorted.reserve(files.size());
    for (const std::uint32_t place : places)
        sorted.push_back(std::move(files[place]));
    files = std::move(sorted);
}

asio::awaitable<std::vector<DriveFile>> listChildren(DriveAPI api, DriveLocation of, DriveItems items,
                                                     std::shared_ptr<const NameOrder> order,
                                                     std::stop_token stop) {
    if (!DriveNames::isIdentifier(of.id))
        throw BackupError("Invalid Google Drive folder ID.");
    std::vector<DriveFile> files;
    Query query = childrenQuery(of, items);
    for (;;) {
        FilePage page = co_await get<FilePage>(api, "files", query, stop);
        if (page.incompleteSearch.value_or(false))
            throw BackupError("Google returned an incomplete folder listing. Please try again.");
        append(files, std::move(page.files));
        if (!page.nextPageToken)
            break;
        query["pageToken"] = std::move(*page.nextPageToken);
    }
    sortByName(files, *order);
    co_return files;
}

asio::awaitable<std::vector<DriveLocation>> listFolders(DriveAPI api, DriveLocation in,
                                                        std::stop_token stop) {
    std::vector<DriveFile> found = co_await listChildren(
        std::move(api), in, DriveItems::foldersOnly, std::make_shared<const NameOrder>(), std::move(stop));
    std::vector<DriveLocation> folders;
    folders.reserve(found.size());
    for (DriveFile& file : found)
        folders.push_back({file.id.string(), std::move(file.name), in.sharedDriveID});
    co_return folders;
}

asio::awaitable<std::vector<SourceEntry>> listTree(DriveAPI api, DriveLocation of, std::stop_token stop) {
    const DriveFile source = co_await fetchFile(api, of.id, stop);
    DriveTree tree(std::move(of), source);
    const auto order = std::make_shared<const NameOrder>();
    for (;;) {
        throwIfCancelled(stop);
        const std::optional<DriveLocation> folder = tree.nextFolder();
        if (!folder)
            break;
        std::vector<DriveFile> children = co_await listChildren(api, *folder, DriveItems::all, order, stop);
        tree.add(std::move(children));
    }
    co_return tree.finish();
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
    return listChildren(*this, std::move(of), items, std::make_shared<const NameOrder>(), std::move(stop));
}

asio::awaitable<std::vector<DriveLocation>> DriveAPI::folders(DriveLocation in, std::stop_token stop) const {
    return listFolders(*this, std::move(in), std::move(stop));
}

asio::awaitable<std::vector<SourceEntry>> DriveAPI::inventory(DriveLocation of, std::stop_token stop) const {
    return listTree(*this, std::move(of), std::move(stop));
}

std::string DriveAPI::exportedName(const DriveFile& file) {
    return DriveNames::exportedName(file);
}

} // namespace marrowbox
