#include "Sandbox/DriveService.h"

#include "Sandbox/DriveListing.h"
#include "Sandbox/Exports.h"
#include "Sandbox/FieldMask.h"
#include "Sandbox/ItemRendering.h"

#include <boost/json.hpp>

namespace marrowbox::sandbox {

namespace {

constexpr std::string_view root = "/drive/v3/";

Answer notFound(std::string_view id) {
    return googleError(404, "notFound", "File not found: " + std::string(id) + ".");
}

Answer mediaAnswer(const DriveItem& item, const RecordedRequest& request) {
    if (item.isFolder() || item.isNative())
        return googleError(
            403, "fileNotDownloadable",
            "Only files with binary content can be downloaded. Use Export with Docs Editors files.");
    if (item.canDownload == false)
        return googleError(403, "cannotDownloadFile", "This file cannot be downloaded by the user.");
    return Answer::bytes(item.content, item.mimeType, request.header("Range"));
}

Answer exportAnswer(const DriveItem& item, std::string_view extensionOrType, const RecordedRequest& request) {
    if (item.canDownload == false)
        return googleError(403, "cannotDownloadFile", "This file cannot be downloaded by the user.");
    const ExportFormat* format = exportFormat(item, extensionOrType);
    if (format == nullptr)
        return googleError(400, "badRequest", "The requested conversion is not supported.");
    return Answer::bytes(exported(item, *format), format->mimeType, request.header("Range"));
}

/// Of an item in a shared drive, only the metadata is hidden from a client that does not say that it knows
/// such.
bool isHidden(const DriveItem& item, const RecordedRequest& request) {
    return !item.driveID.empty() && request.queryItem("supportsAllDrives") != "true";
}

Answer metadataAnswer(const DriveItem& item, const RecordedRequest& request) {
    const FieldMask mask(request.queryItem("fields").value_or("kind,id,name,mimeType,driveId"));
    std::string text;
    ItemRendering(mask, "").append(text, item);
    return Answer::json(std::move(text));
}

Answer fileAnswer(const Drive& drive, std::string_view path, const RecordedRequest& request) {
    const std::size_t slash = std::min(path.find('/'), path.size());
    const std::string_view id = path.substr(0, slash);
    const std::string_view operation = path.substr(slash);
    const auto item = drive.item(id);
    if (!item)
        return notFound(id);
    if (operation == "/export")
        return exportAnswer(*item, request.queryItem("mimeType").value_or(""), request);
    if (!operation.empty())
        return googleError(404, "notFound", "Not Found");
    if (request.queryItem("alt") == "media")
        return mediaAnswer(*item, request);
    return isHidden(*item, request) ? notFound(id) : metadataAnswer(*item, request);
}

Answer aboutAnswer(const Identity::Bearer& asking, const RecordedRequest& request) {
    const auto fields = request.queryItem("fields");
    if (!fields)
        return googleError(400, "required", "The 'fields' parameter is required for this method.");
    const FieldMask mask(*fields);
    boost::json::object about;
    if (mask.wants("kind"))
        about["kind"] = "drive#about";
    if (mask.wants("user"))
        about["user"] = {
            {"displayName", asking.person.name}, {"emailAddress", asking.person.email}, {"me", true}};
    if (mask.wants("storageQuota"))
        about["storageQuota"] = {{"limit", "16106127360"}, {"usage", "0"}};
    if (mask.wants("importFormats"))
        about["importFormats"] = boost::json::object();
    if (mask.wants("exportFormats")) {
        boost::json::object formats;
        for (const ExportFormat& format : exportFormats()) {
            boost::json::value& types = formats[format.nativeType];
            if (types.is_null())
                types = boost::json::array();
            types.as_array().emplace_back(format.mimeType);
        }
        about["exportFormats"] = std::move(formats);
    }
    return Answer::json(boost::json::serialize(about));
}

} // namespace

Answer driveAnswer(Drive& drive, const Identity::Bearer& asking, const RecordedRequest& request) {
    const bool mayRead = asking.allows(driveScope) || asking.allows("https://www.googleapis.com/auth/drive");
    if (!mayRead)
        return googleError(403, "insufficientPermissions", "Request had insufficient authentication scopes.");
    if (request.method != "GET" && request.method != "HEAD")
        return googleError(403, "insufficientPermissions", "The sandbox's Drive can only be read.");
    const std::string_view path = std::string_view(request.path).substr(root.size());
    if (path == "files")
        return listingAnswer(drive, request);
    if (path == "drives")
        return drivesAnswer(drive, request);
    if (path == "about")
        return aboutAnswer(asking, request);
    if (path.starts_with("files/"))
        return fileAnswer(drive, path.substr(6), request);
    return googleError(404, "notFound", "Not Found");
}

Answer exportLinkAnswer(Drive& drive, const RecordedRequest& request) {
    const std::string id = request.queryItem("id").value_or("");
    const auto item = drive.item(id);
    if (!item)
        return notFound(id);
    return exportAnswer(*item, request.queryItem("exportFormat").value_or(""), request);
}

} // namespace marrowbox::sandbox
