#include "Sandbox/DriveListing.h"

#include "Sandbox/FieldMask.h"
#include "Sandbox/FileQuery.h"
#include "Sandbox/ItemRendering.h"

#include <algorithm>
#include <charconv>

namespace marrowbox::sandbox {

namespace {

constexpr std::string_view pageTokenPrefix = "next-";

struct Page {
    std::int64_t from = 0;
    std::int64_t size = 100;
};

std::optional<std::int64_t> number(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < 0)
        return std::nullopt;
    return value;
}

std::optional<Page> requestedPage(const RecordedRequest& request, std::int64_t largest) {
    Page page;
    if (const auto size = request.queryItem("pageSize")) {
        const auto wanted = number(*size);
        if (!wanted || *wanted == 0)
            return std::nullopt;
        page.size = std::min(*wanted, largest);
    }
    if (const auto token = request.queryItem("pageToken")) {
        if (!token->starts_with(pageTokenPrefix))
            return std::nullopt;
        const auto from = number(std::string_view(*token).substr(pageTokenPrefix.size()));
        if (!from)
            return std::nullopt;
        page.from = *from;
    }
    return page;
}

/// What is wrong with the choice of corpora; absent when nothing is.
std::optional<Answer> corporaComplaint(const RecordedRequest& request) {
    const std::string corpora = request.queryItem("corpora").value_or("user");
    const bool isDrive = corpora == "drive";
    if (isDrive != request.queryItem("driveId").has_value())
        return googleError(400, "invalid",
                           "The driveId parameter must be specified if and only if corpora is set to drive.");
    const bool includesAll = request.queryItem("includeItemsFromAllDrives") == "true";
    if (isDrive && !includesAll)
        return googleError(403, "teamDrivesParentLimit",
                           "includeItemsFromAllDrives must be set to true when corpora is drive.");
    if (includesAll && request.queryItem("supportsAllDrives") != "true")
        return googleError(403, "teamDrivesParentLimit",
                           "supportsAllDrives must be set to true with includeItemsFromAllDrives.");
    if (!isDrive && corpora != "user" && corpora != "allDrives")
        return googleError(400, "invalid", "Invalid value for corpora: " + corpora);
    return std::nullopt;
}

/// Whether the corpora that were asked for hold the item.
bool isInCorpora(const DriveItem& item, const RecordedRequest& request) {
    const std::string corpora = request.queryItem("corpora").value_or("user");
    if (corpora == "drive")
        return item.driveID == request.queryItem("driveId");
    return corpora == "allDrives" || item.driveID.empty();
}

struct RenderedFiles {
    std::string items;
    std::optional<std::int64_t> next;
};

RenderedFiles renderedFiles(const Drive& drive, const RecordedRequest& request, const FileQuery& query,
                            Page page, const FieldMask& mask) {
    const ItemRendering rendering(mask, "files/");
    RenderedFiles rendered;
    std::int64_t count = 0;
    drive.visitChildren(query.parent, page.from, [&](std::int64_t place, const DriveItem& item) {
        if (!query.matches(item) || !isInCorpora(item, request))
            return true;
        if (count++ == page.size) {
            rendered.next = place;
            return false;
        }
        if (!rendered.items.empty())
            rendered.items += ',';
        rendering.append(rendered.items, item);
        return true;
    });
    return rendered;
}

/// Puts the members together that the mask wants.
class PageText {
  public:
    explicit PageText(const FieldMask& mask) : mask_(mask) {}

    void add(std::string_view name, std::string_view json) {
        if (!mask_.wants(name))
            return;
        text_ += text_.size() == 1 ? "\"" : ",\"";
        text_ += name;
        text_ += "\":";
        text_ += json;
    }
    void addNext(const std::optional<std::int64_t>& next) {
        if (next)
            add("nextPageToken", "\"" + std::string(pageTokenPrefix) + std::to_string(*next) + "\"");
    }
    std::string finish() { return std::move(text_) + "}"; }

  private:
    const FieldMask& mask_;
    std::string text_ = "{";
};

} // namespace

Answer listingAnswer(const Drive& drive, const RecordedRequest& request) {
    if (const auto complaint = corporaComplaint(request))
        return *complaint;
    const auto query = parseFileQuery(request.queryItem("q").value_or(""));
    const auto page = requestedPage(request, 1000);
    if (!query || !page)
        return googleError(400, "invalid", "Invalid Value");
    if (!drive.item(query->parent))
        return googleError(404, "notFound", "File not found: .");
    const FieldMask mask(request.queryItem("fields").value_or(
        "kind,incompleteSearch,nextPageToken,files(kind,id,name,mimeType,driveId)"));
    const RenderedFiles rendered = renderedFiles(drive, request, *query, *page, mask);
    PageText text(mask);
    text.add("kind", "\"drive#fileList\"");
    text.addNext(rendered.next);
    text.add("incompleteSearch", "false");
    text.add("files", "[" + rendered.items + "]");
    return Answer::json(text.finish());
}

Answer drivesAnswer(const Drive& drive, const RecordedRequest& request) {
    const auto page = requestedPage(request, 100);
    if (!page)
        return googleError(400, "invalid", "Invalid Value");
    const FieldMask mask(request.queryItem("fields").value_or("kind,nextPageToken,drives(kind,id,name)"));
    const auto drives = drive.sharedDrives();
    const auto count = static_cast<std::int64_t>(drives.size());
    const std::int64_t end = std::min(count, page->from + page->size);
    std::string items;
    for (std::int64_t index = page->from; index < end; ++index) {
        const Drive::SharedDrive& shared = drives[static_cast<std::size_t>(index)];
        items += items.empty() ? R"({"id":)" : R"(,{"id":)";
        appendJSONText(items, shared.id);
        items += R"(,"name":)";
        appendJSONText(items, shared.name);
        items += '}';
    }
    PageText text(mask);
    text.add("kind", "\"drive#driveList\"");
    text.addNext(end < count ? std::optional(end) : std::nullopt);
    text.add("drives", "[" + items + "]");
    return Answer::json(text.finish());
}

} // namespace marrowbox::sandbox
