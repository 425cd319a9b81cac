#include "Sandbox/DemoTree.h"

#include <array>
#include <string_view>

namespace marrowbox::sandbox {

namespace {

constexpr std::int64_t largeFileSize = 50'000'000;

/// Names that a portable path has to escape, and names that meet once case and accents are folded.
const std::vector<std::string>& awkwardNames() {
    static const std::vector<std::string> names{
        "a/b:c",
        "back\\slash.txt",
        "100% sure.txt",
        "ends with a dot.",
        "ends with a blank ",
        "ends with both. ",
        ".",
        "..",
        "...",
        ".hidden",
        "line\nbreak.txt",
        "zero\u200Bwidth.txt",
        "quote \" and ' and `.txt",
        "-starts-with-a-dash",
        "*?<>|.txt",
        "Cafe\u0301.txt", // the accent as a character of its own
        "Caf\u00E9.txt",
        "report.txt",
        "REPORT.TXT",
        "twin.txt",
        "twin.txt",
        "plan.docx", // beside a native document "Plan"
        "\u65E5\u672C\u8A9E.txt",
        "\u05E9\u05DC\u05D5\u05DD.txt",
        "\U0001F4C4 page.txt",
        "file 9.txt",
        "file 10.txt",
        std::string(235, 'n') + ".txt", // the longest name that is portable
    };
    return names;
}

/// Adds items and counts those that are no folders.
class Builder {
  public:
    explicit Builder(Drive& drive) : drive_(drive) {}

    std::string folder(const std::string& parent, const std::string& name) {
        return drive_.addFolder(parent, name);
    }
    std::string text(const std::string& parent, const std::string& name) {
        ++count_;
        return drive_.addFile(parent, name, "Text of " + name + ", item " + std::to_string(count_) + ".\n",
                              "text/plain");
    }
    std::string binary(const std::string& parent, const std::string& name, std::int64_t size,
                       const char* type) {
        ++count_;
        return drive_.addFile(parent, name, Content::pattern(static_cast<std::uint64_t>(count_), size), type);
    }
    std::string native(const std::string& parent, const std::string& name, NativeKind kind) {
        ++count_;
        return drive_.addNative(parent, name, kind, "Words of " + name + ".\n");
    }
    int takeCount() { return std::exchange(count_, 0); }

  private:
    Drive& drive_;
    int count_ = 0;
};

void addLetters(Builder& build, DemoTree& tree) {
    const std::string letters = build.folder(tree.papers, "Letters");
    for (int year = 2022; year <= 2026; ++year) {
        const std::string yearFolder = build.folder(letters, std::to_string(year));
        for (int month = 1; month <= 12; ++month) {
            const std::string folder = build.folder(yearFolder, "Month " + std::to_string(month));
            for (int number = 1; number <= 4; ++number)
                tree.letters.push_back(build.text(folder, "Letter " + std::to_string(number) + ".txt"));
        }
    }
}

void addDocuments(Builder& build, DemoTree& tree) {
    const std::string documents = build.folder(tree.papers, "Documents");
    tree.document = build.native(documents, "Plan", NativeKind::document);
    build.native(documents, "Plan.docx", NativeKind::document);
    build.native(documents, "Budget", NativeKind::spreadsheet);
    build.native(documents, "Members", NativeKind::spreadsheet);
    build.native(documents, "Talk", NativeKind::presentation);
    build.native(documents, "Floor plan", NativeKind::drawing);
}

void addPictures(Builder& build, DemoTree& tree) {
    const std::string pictures = build.folder(tree.papers, "Pictures");
    for (int number = 1; number <= 40; ++number)
        build.binary(pictures, "Picture " + std::to_string(number) + ".jpg", 20'000 + 3'001 * number,
                     "image/jpeg");
    tree.largeFile = build.binary(pictures, "Film.mov", largeFileSize, "video/quicktime");
    build.binary(pictures, "Empty.dat", 0, "application/octet-stream");
    build.folder(pictures, "Nothing yet");
}

void addDeepFolders(Builder& build, const DemoTree& tree) {
    std::string folder = build.folder(tree.papers, "Archive");
    for (int depth = 1; depth <= 12; ++depth) {
        folder = build.folder(folder, "Box " + std::to_string(depth));
        build.text(folder, "Note.txt");
    }
}

void addTeam(Builder& build, Drive& drive, DemoTree& tree) {
    tree.team = drive.addSharedDrive("Team");
    const std::string minutes = build.folder(tree.team, "Minutes");
    for (int number = 1; number <= 24; ++number)
        build.text(minutes, "Meeting " + std::to_string(number) + ".txt");
    build.native(tree.team, "Calendar", NativeKind::spreadsheet);
    build.native(minutes, "Next meeting", NativeKind::document);
    tree.teamFiles = build.takeCount();
}

} // namespace

DemoTree demoTree(Drive& drive) {
    DemoTree tree;
    Builder build(drive);
    tree.papers = build.folder("root", "Ada\u2019s papers");
    addLetters(build, tree);
    addDocuments(build, tree);
    addPictures(build, tree);
    addDeepFolders(build, tree);
    const std::string names = build.folder(tree.papers, "Names: awkward/odd");
    for (const std::string& name : awkwardNames())
        build.text(names, name);
    build.native(names, "Plan", NativeKind::document);
    build.text(build.folder(names, "Folder"), "inside.txt");
    build.text(build.folder(names, "FOLDER"), "inside.txt");
    tree.papersFiles = build.takeCount();
    addTeam(build, drive, tree);
    tree.forms = build.folder("root", "Forms");
    build.native(tree.forms, "Questions", NativeKind::form);
    build.native(tree.forms, "Link to somewhere", NativeKind::shortcut);
    return tree;
}

DemoChanges changeDemoTree(Drive& drive, const DemoTree& tree) {
    DemoChanges changes;
    const auto letter = [&](std::size_t index) { return tree.letters.at(index); };
    for (std::size_t index = 0; index < 60; index += 5, ++changes.edited)
        drive.replaceContent(letter(index), "Rewritten letter " + std::to_string(index) + ".\n");
    drive.replaceContent(tree.document, "New words of the plan.\n");
    ++changes.edited;
    for (std::size_t index = 61; index < 65; ++index, ++changes.renamed)
        drive.rename(letter(index), "Renamed " + std::to_string(index) + ".txt");
    for (std::size_t index = 70; index < 73; ++index, ++changes.moved)
        drive.move(letter(index), tree.papers);
    for (std::size_t index = 80; index < 90; ++index, ++changes.trashed)
        drive.trash(letter(index));
    const std::string added = drive.addFolder(tree.papers, "New this week");
    for (int number = 1; number <= 8; ++number, ++changes.added)
        drive.addFile(added, "New " + std::to_string(number) + ".txt",
                      "New text " + std::to_string(number) + ".\n");
    return changes;
}

} // namespace marrowbox::sandbox
