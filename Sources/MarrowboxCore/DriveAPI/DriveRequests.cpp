#include "DriveAPI/DriveRequests.h"

#include "DriveAPI/DriveNames.h"
#include "GoogleOAuth/WebEncoding.h"
#include "Models/BackupError.h"
#include "Models/JSONFile.h"

#include <cstring>

namespace marrowbox::DriveRequests {

namespace {

constexpr std::string_view fileFields =
    "id,name,mimeType,version,modifiedTime,size,md5Checksum,trashed,driveId,capabilities(canDownload)";

/// The library's own search stops at every first letter.
std::size_t find(std::string_view text, std::string_view part) {
    const void* found = ::memmem(text.data(), text.size(), part.data(), part.size());
    if (found == nullptr)
        return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

} // namespace

asio::awaitable<std::string> fetch(DriveAPI api, std::string path, Query query, std::stop_token stop) {
    return fetch(std::move(api), std::move(path), std::move(query), {}, std::move(stop));
}

asio::awaitable<std::string> fetch(DriveAPI api, std::string path, Query query, HTTPOrder order,
                                   std::stop_token stop) {
    std::string url = "https://www.googleapis.com/drive/v3/" + path + "?" + WebEncoding::form(query);
    std::string body = co_await api.auth->request(std::move(url), std::move(api.accountID), std::move(order),
                                                  std::move(stop));
    co_return body;
}

Query drivesQuery() {
    return {{"pageSize", "100"}, {"fields", "nextPageToken,drives(id,name)"}};
}

Query fileQuery() {
    return {{"fields", std::string(fileFields)}, {"supportsAllDrives", "true"}};
}

Query childrenQuery(const DriveLocation& of, DriveItems items) {
    if (!DriveNames::isIdentifier(of.id))
        throw BackupError("Invalid Google Drive folder ID.");
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

FilePage filePage(std::string_view body) {
    FilePage page = decodeJSON<FilePage>(body);
    if (page.incompleteSearch.value_or(false))
        throw BackupError("Google returned an incomplete folder listing. Please try again.");
    return page;
}

bool isSurelyLast(std::string_view body) {
    constexpr std::string_view verdict = "\"incompleteSearch\"";
    // An escape might hide the name of a member.
    if (find(body, "\"nextPageToken\"") != std::string_view::npos ||
        body.find('\\') != std::string_view::npos)
        return false;
    const std::size_t found = find(body, verdict);
    if (found == std::string_view::npos)
        return true;
    const std::string_view rest = body.substr(found + verdict.size());
    const std::size_t value = rest.find_first_not_of(": \t\r\n");
    return value != std::string_view::npos && rest.substr(value).starts_with("false") &&
           find(rest, verdict) == std::string_view::npos;
}

} // namespace marrowbox::DriveRequests
