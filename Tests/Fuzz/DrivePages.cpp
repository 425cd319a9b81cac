// A page of a folder's children: it is refused with a sentence, or gives entries that all stay below the
// source.
#include "DriveAPI/DriveRequests.h"
#include "DriveAPI/DriveTree.h"
#include "Models/BackupError.h"
#include "Models/BackupPaths.h"
#include "Models/JSONReader.h"
#include "Require.h"

namespace {

using namespace marrowbox;

std::vector<SourceEntry> entriesOf(std::vector<DriveFile> children) {
    DriveFile source;
    source.id = "source";
    source.name = "Source";
    source.mimeType = "application/vnd.google-apps.folder";
    DriveTree tree({.id = "source", .name = "Source"}, source);
    tree.nextFolder();
    tree.add(std::move(children));
    while (tree.nextFolder())
        tree.add({});
    return tree.finish();
}

void walk(std::string_view body) {
    const bool last = DriveRequests::isSurelyLast(body);
    DriveRequests::FilePage page = DriveRequests::filePage(body);
    fuzz::require(!last || (!page.nextPageToken && !page.incompleteSearch.value_or(false)));
    const auto entries = entriesOf(std::move(page.files));
    BackupPaths::validateEntries(entries); // a walk that ends gives only what may be laid out
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    try {
        walk({bytes, count});
    } catch (const JSONDecodingError&) {
    } catch (const BackupError&) {
    }
    return 0;
}
