#include "Sandbox/Exports.h"

#include "Sandbox/WireText.h"

#include <algorithm>

namespace marrowbox::sandbox {

namespace {

constexpr std::string_view document = "application/vnd.google-apps.document";
constexpr std::string_view spreadsheet = "application/vnd.google-apps.spreadsheet";
constexpr std::string_view presentation = "application/vnd.google-apps.presentation";
constexpr std::string_view drawing = "application/vnd.google-apps.drawing";

std::string_view linkPath(std::string_view nativeType) {
    if (nativeType == spreadsheet)
        return "/spreadsheets/export";
    if (nativeType == presentation)
        return "/feeds/download/presentations/Export";
    if (nativeType == drawing)
        return "/feeds/download/drawings/Export";
    return "/feeds/download/documents/export/Export";
}

} // namespace

const std::vector<ExportFormat>& exportFormats() {
    static const std::vector<ExportFormat> formats{
        {document, "docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
        {document, "odt", "application/vnd.oasis.opendocument.text"},
        {document, "txt", "text/plain"},
        {spreadsheet, "xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
        {spreadsheet, "csv", "text/csv"},
        {presentation, "pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
        {presentation, "txt", "text/plain"},
        {drawing, "svg", "image/svg+xml"},
        {drawing, "png", "image/png"},
    };
    return formats;
}

const ExportFormat* exportFormat(const DriveItem& item, std::string_view extensionOrType) {
    const auto& formats = exportFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), [&](const ExportFormat& format) {
        return format.nativeType == item.mimeType &&
               (format.extension == extensionOrType || format.mimeType == extensionOrType);
    });
    return found == formats.end() ? nullptr : &*found;
}

std::string exportLink(const DriveItem& item, const ExportFormat& format) {
    return "https://docs.google.com" + std::string(linkPath(format.nativeType)) +
           "?id=" + percentEncoded(item.id) + "&exportFormat=" + std::string(format.extension);
}

Content exported(const DriveItem& item, const ExportFormat& format) {
    const std::string text = item.content.bytes();
    if (format.extension == "svg")
        return "<svg xmlns=\"http://www.w3.org/2000/svg\"><desc>" + percentEncoded(text) + "</desc></svg>\n";
    return "sandbox export as " + std::string(format.extension) + "\n" + text;
}

} // namespace marrowbox::sandbox
