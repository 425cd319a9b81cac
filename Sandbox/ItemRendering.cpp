#include "Sandbox/ItemRendering.h"

#include "Sandbox/Exports.h"
#include "Sandbox/WireText.h"

namespace marrowbox::sandbox {

namespace {

void appendName(std::string& to, std::string_view name) {
    if (to.back() != '{')
        to += ',';
    to += '"';
    to += name;
    to += "\":";
}

void appendText(std::string& to, std::string_view name, std::string_view value) {
    appendName(to, name);
    appendJSONText(to, value);
}

void appendText(std::string& to, std::string_view name, const std::optional<std::string>& value) {
    if (value)
        appendText(to, name, std::string_view(*value));
}

void appendClaim(std::string& to, std::string_view name, bool value) {
    appendName(to, name);
    to += value ? "true" : "false";
}

void appendParents(std::string& to, const DriveItem& item) {
    if (item.parents.empty())
        return;
    appendName(to, "parents");
    to += '[';
    for (const std::string& parent : item.parents) {
        if (to.back() != '[')
            to += ',';
        appendJSONText(to, parent);
    }
    to += ']';
}

void appendExportLinks(std::string& to, const DriveItem& item) {
    std::string links = "{";
    for (const ExportFormat& format : exportFormats())
        if (format.nativeType == item.mimeType)
            appendText(links, format.mimeType, std::string_view(exportLink(item, format)));
    if (links == "{")
        return;
    appendName(to, "exportLinks");
    to += links + "}";
}

} // namespace

ItemRendering::ItemRendering(const FieldMask& mask, const std::string& prefix) {
    const auto wants = [&](std::string_view name) { return mask.wants(prefix + std::string(name)); };
    kind_ = wants("kind");
    id_ = wants("id");
    name_ = wants("name");
    mimeType_ = wants("mimeType");
    version_ = wants("version");
    modifiedTime_ = wants("modifiedTime");
    createdTime_ = wants("createdTime");
    size_ = wants("size");
    md5Checksum_ = wants("md5Checksum");
    trashed_ = wants("trashed");
    driveId_ = wants("driveId");
    capabilities_ = wants("capabilities/canDownload");
    parents_ = wants("parents");
    exportLinks_ = wants("exportLinks");
    webViewLink_ = wants("webViewLink");
}

void ItemRendering::append(std::string& to, const DriveItem& item) const {
    to += '{';
    if (kind_)
        appendText(to, "kind", std::string_view("drive#file"));
    if (id_)
        appendText(to, "id", std::string_view(item.id));
    if (name_)
        appendText(to, "name", std::string_view(item.name));
    if (mimeType_)
        appendText(to, "mimeType", std::string_view(item.mimeType));
    if (version_)
        appendText(to, "version", item.version);
    if (modifiedTime_)
        appendText(to, "modifiedTime", item.modifiedTime);
    if (createdTime_)
        appendText(to, "createdTime", std::string_view("2026-01-01T00:00:00.000Z"));
    if (size_)
        appendText(to, "size", item.size);
    if (md5Checksum_)
        appendText(to, "md5Checksum", item.md5Checksum);
    if (trashed_)
        appendClaim(to, "trashed", item.trashed);
    if (driveId_ && !item.driveID.empty())
        appendText(to, "driveId", std::string_view(item.driveID));
    if (capabilities_ && item.canDownload) {
        appendName(to, "capabilities");
        to += *item.canDownload ? R"({"canDownload":true})" : R"({"canDownload":false})";
    }
    if (parents_)
        appendParents(to, item);
    if (exportLinks_)
        appendExportLinks(to, item);
    if (webViewLink_)
        appendText(to, "webViewLink", std::string_view("https://drive.google.com/open?id=" + item.id));
    to += '}';
}

} // namespace marrowbox::sandbox
