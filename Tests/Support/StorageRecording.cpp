#include "Support/StorageRecording.h"

#include "Platform/Files.h"
#include "Support/Spread.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace marrowbox::test {

namespace fs = std::filesystem;

namespace {

using Kind = StorageChange::Kind;

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

bool synchronizes(const FileCall& call) {
    return isOneOf(call.name, {"fsync", "fdatasync"});
}

/// Calls that leave names and bytes as they are.
bool isWithoutEffect(const FileCall& call) {
    return isOneOf(call.name, {"sync_file_range", "flock", "unlock", "chmod", "fchmod", "fchmodat"});
}

Kind kindOf(const FileCall& call) {
    if (isOneOf(call.name, {"open", "openat", "creat"}))
        return Kind::makeFile;
    if (isOneOf(call.name, {"mkdir", "mkdirat"}))
        return Kind::makeFolder;
    if (isOneOf(call.name, {"rename", "renameat", "renameat2"}))
        return Kind::move;
    if (isOneOf(call.name, {"link", "linkat"}))
        return Kind::link;
    if (isOneOf(call.name, {"unlink", "unlinkat", "rmdir"}))
        return Kind::remove;
    if (isOneOf(call.name, {"symlink", "symlinkat", "syncfs"}))
        throw std::logic_error("The model of a disk knows no " + std::string(call.name) + ".");
    return synchronizes(call) ? Kind::synchronize : Kind::write;
}

/// The same for equal trees of one recording.
std::string keyOf(const StoredTree& tree) {
    std::string key;
    for (const auto& [path, bytes] : tree) {
        key += path + '\n';
        key += bytes ? std::to_string(bytes->size()) + ' ' + std::to_string(std::hash<std::string>()(*bytes))
                     : "/";
        key += '\n';
    }
    return key;
}

bool holdSame(const StoredTree& one, const StoredTree& other) {
    return std::ranges::equal(one, other, [](const auto& left, const auto& right) {
        const bool isSame =
            left.second && right.second ? *left.second == *right.second : !left.second && !right.second;
        return left.first == right.first && isSame;
    });
}

std::string wordsOf(const StorageChange& change) {
    static const std::map<Kind, std::string> verbs = {{Kind::makeFile, "making"},
                                                      {Kind::makeFolder, "making the folder"},
                                                      {Kind::write, "writing"},
                                                      {Kind::move, "moving"},
                                                      {Kind::link, "linking"},
                                                      {Kind::remove, "removing"},
                                                      {Kind::synchronize, "synchronising"}};
    return verbs.at(change.kind) + " " + change.path + (change.target.empty() ? "" : " to " + change.target);
}

} // namespace

StorageRecording::StorageRecording(fs::path folder)
    : folder_(std::move(folder)), before_(readTree(folder_)), model_(before_) {
}

std::string StorageRecording::relative(const fs::path& path) const {
    std::string text = path.lexically_relative(folder_);
    return text == "." ? "" : text;
}

Answer StorageRecording::note(const FileCall& call) {
    if (!call.isWithin(folder_) || isWithoutEffect(call))
        return Answer::proceed();
    if (synchronizes(call) && !call.wasHeld)
        return Answer::whenQuiet();
    StorageChange change{.kind = kindOf(call), .path = relative(call.path)};
    if (!call.target.empty())
        change.target = relative(call.target);
    keep(std::move(change));
    return Answer::proceed();
}

void StorageRecording::keep(StorageChange change) {
    const auto number = model_.find(change.path);
    if (change.kind == Kind::makeFile && number)
        change.kind = Kind::write; // an open that may empty the file
    if (change.kind != Kind::write) {
        // What a file holds is looked up while it is there and nobody writes to it.
        look(change.path);
        look(change.target);
        model_.apply(change);
    } else if (number)
        unseenWrites_[*number].push_back(changes_.size());
    else
        return; // to a file without a name
    changes_.push_back(std::move(change));
}

void StorageRecording::look(const std::string& path) {
    const auto number = model_.find(path);
    const auto writes = number ? unseenWrites_.find(*number) : unseenWrites_.end();
    if (writes == unseenWrites_.end())
        return;
    const auto bytes = std::make_shared<const std::string>(readFile(folder_ / path));
    for (const std::size_t position : writes->second)
        changes_[position].bytes = bytes;
    model_.apply({.kind = Kind::write, .path = path, .bytes = bytes});
    unseenWrites_.erase(writes);
}

void StorageRecording::endOfProgram() {
    for (const auto& [path, bytes] : model_.seen())
        look(path);
    if (!unseenWrites_.empty())
        throw std::logic_error("A file was written to that has lost its name.");
    if (!holdSame(model_.seen(), readTree(folder_)))
        throw std::logic_error("The folder is not what its recorded changes make of it.");
    ends_.push_back(changes_.size());
}

int StorageRecording::programsEnded(std::size_t changes) const {
    return static_cast<int>(std::ranges::count_if(ends_, [&](std::size_t end) { return end <= changes; }));
}

std::size_t StorageRecording::changesOf(int programs) const {
    return programs == 0 ? 0 : ends_.at(static_cast<std::size_t>(programs - 1));
}

PowerCutCount cutPowerEverywhere(const StorageRecording& recording, PowerCutMoments which,
                                 const std::function<bool(const LeftByPowerCut&)>& visit) {
    const auto& changes = recording.changes();
    PowerCutCount count{.changes = changes.size()};
    const std::size_t first = recording.changesOf(which.afterPrograms);
    std::vector<int> moments = spread(static_cast<int>(changes.size() - first), which.atMost);
    moments.push_back(static_cast<int>(changes.size() - first) + 1);
    StorageModel model(recording.before());
    std::set<std::string> known;
    std::size_t applied = 0;
    for (const int moment : moments) { // from 1, before the first change
        while (applied + 1 < first + static_cast<std::size_t>(moment))
            model.apply(changes[applied++]);
        const int ended = recording.programsEnded(applied);
        const std::string at = applied == 0 ? "before all" : "after " + wordsOf(changes[applied - 1]);
        for (const PowerCut& cut : powerCuts(static_cast<unsigned>(moment))) {
            ++count.cuts;
            LeftByPowerCut left{model.after(cut), at + ": " + std::string(cut.words), ended};
            if (!known.insert(std::to_string(ended) + keyOf(left.tree)).second)
                continue;
            ++count.states;
            if (!visit(left))
                return count;
        }
    }
    return count;
}

} // namespace marrowbox::test
