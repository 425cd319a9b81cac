#include "Support/StorageModel.h"

#include "Platform/Files.h"

#include <fcntl.h>
#include <functional>

namespace marrowbox::test {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t root = 0;

Bytes bytesOf(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
}

const Bytes& noBytes() {
    static const Bytes none = bytesOf("");
    return none;
}

bool holdSame(const Bytes& one, const Bytes& other) {
    return one == other || (one && other && *one == *other);
}

bool isHeads(std::mt19937& chance) {
    return (chance() & 1U) != 0;
}

} // namespace

StoredTree readTree(const fs::path& folder) {
    StoredTree tree;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        const std::string path = item.path().lexically_relative(folder);
        tree[path] = item.is_directory() ? Bytes() : bytesOf(readFile(item.path()));
    }
    return tree;
}

void writeTree(const StoredTree& tree, const fs::path& folder) {
    for (const auto& [path, bytes] : tree) // a folder comes before what is in it
        if (bytes)
            writeAll(openFile(folder / path, O_WRONLY | O_CREAT | O_EXCL), *bytes);
        else
            makeDirectory(folder / path, 0700);
}

std::vector<PowerCut> powerCuts(unsigned moment) {
    using Names = PowerCut::Names;
    using Data = PowerCut::Data;
    return {{"nothing kept that was not synchronised", Names::lost, Data::lost},
            {"all names kept, files empty", Names::kept, Data::lost},
            {"all names kept, half of the bytes", Names::kept, Data::half},
            {"all names kept, zeroes", Names::kept, Data::zeroes},
            {"the latest name of each folder kept before the others", Names::latestKept, Data::kept},
            {"some of everything", Names::byChance, Data::byChance, moment}};
}

StorageModel::StorageModel(const StoredTree& tree) : nodes_{{.isFolder = true}} {
    for (const auto& [path, bytes] : tree) {
        make(path, !bytes);
        write(path, bytes);
    }
    for (Node& node : nodes_)
        synchronize(node);
}

std::optional<std::size_t> StorageModel::find(std::string_view path) const {
    std::size_t number = root;
    for (const fs::path& piece : fs::path(path)) {
        const auto found = nodes_[number].names.find(piece.native());
        if (found == nodes_[number].names.end())
            return std::nullopt;
        number = found->second;
    }
    return number;
}

std::optional<StorageModel::Place> StorageModel::placeOf(std::string_view path) const {
    const fs::path whole(path);
    const auto folder = find(whole.parent_path().native());
    if (!folder || !nodes_[*folder].isFolder || path.empty())
        return std::nullopt;
    return Place{*folder, whole.filename()};
}

void StorageModel::apply(const StorageChange& change) {
    using Kind = StorageChange::Kind;
    switch (change.kind) {
    case Kind::makeFile:
    case Kind::makeFolder:
        return make(change.path, change.kind == Kind::makeFolder);
    case Kind::write:
        return write(change.path, change.bytes);
    case Kind::move:
        return move(change.path, change.target);
    case Kind::link:
        return link(change.path, change.target);
    case Kind::remove:
        return remove(change.path);
    case Kind::synchronize:
        if (const auto number = find(change.path))
            synchronize(nodes_[*number]);
    }
}

void StorageModel::make(const std::string& path, bool isFolder) {
    const auto place = placeOf(path);
    if (!place || find(path))
        return;
    nodes_.push_back({.isFolder = isFolder, .bytes = isFolder ? Bytes() : noBytes()});
    change(nodes_[place->folder], {.added = place->name, .number = nodes_.size() - 1});
}

void StorageModel::write(const std::string& path, const Bytes& bytes) {
    const auto number = find(path);
    if (number && !nodes_[*number].isFolder)
        nodes_[*number].bytes = bytes;
}

void StorageModel::move(const std::string& from, const std::string& to) {
    const auto number = find(from);
    const auto source = placeOf(from);
    const auto target = placeOf(to);
    if (!number || !source || !target)
        return;
    if (source->folder == target->folder) {
        change(nodes_[source->folder], {.removed = source->name, .added = target->name, .number = *number});
        return;
    }
    change(nodes_[target->folder], {.added = target->name, .number = *number});
    change(nodes_[source->folder], {.removed = source->name});
}

void StorageModel::link(const std::string& from, const std::string& to) {
    const auto number = find(from);
    const auto target = placeOf(to);
    if (number && target && !find(to))
        change(nodes_[target->folder], {.added = target->name, .number = *number});
}

void StorageModel::remove(const std::string& path) {
    const auto number = find(path);
    const auto place = placeOf(path);
    if (number && place && nodes_[*number].names.empty())
        change(nodes_[place->folder], {.removed = place->name});
}

void StorageModel::change(Node& folder, const NameChange& change) {
    step(folder.names, change);
    folder.pending.push_back(change);
}

void StorageModel::step(Names& names, const NameChange& change) {
    if (!change.removed.empty())
        names.erase(change.removed);
    if (!change.added.empty())
        names[change.added] = change.number;
}

void StorageModel::synchronize(Node& node) {
    node.lasting = node.bytes;
    node.lastNames = node.names;
    node.pending.clear();
}

StorageModel::Names StorageModel::namesAfter(const Node& folder, const PowerCut& cut, std::mt19937& chance) {
    if (cut.names == PowerCut::Names::kept)
        return folder.names;
    Names names = folder.lastNames;
    if (cut.names == PowerCut::Names::latestKept && !folder.pending.empty())
        step(names, folder.pending.back());
    if (cut.names == PowerCut::Names::byChance)
        for (const NameChange& change : folder.pending)
            if (isHeads(chance))
                step(names, change);
    return names;
}

Bytes StorageModel::bytesAfter(const Node& file, const PowerCut& cut, std::mt19937& chance) {
    const Bytes lost = file.lasting ? file.lasting : noBytes();
    if (holdSame(file.bytes, lost))
        return lost;
    switch (cut.data == PowerCut::Data::byChance ? static_cast<PowerCut::Data>(chance() % 4) : cut.data) {
    case PowerCut::Data::lost:
        return lost;
    case PowerCut::Data::half:
        return bytesOf(file.bytes->substr(0, file.bytes->size() / 2));
    case PowerCut::Data::zeroes:
        return bytesOf(std::string(file.bytes->size(), '\0'));
    case PowerCut::Data::kept:
    case PowerCut::Data::byChance:
        break;
    }
    return file.bytes;
}

StoredTree StorageModel::seen() const {
    StoredTree tree;
    const std::function<void(const Names&, const fs::path&)> walk = [&](const Names& names,
                                                                        const fs::path& at) {
        for (const auto& [name, number] : names) {
            tree[at / name] = nodes_[number].bytes;
            walk(nodes_[number].names, at / name);
        }
    };
    walk(nodes_[root].names, {});
    return tree;
}

StoredTree StorageModel::after(const PowerCut& cut) const {
    std::mt19937 chance(cut.seed);
    StoredTree tree;
    const std::function<void(const Node&, const fs::path&)> walk = [&](const Node& folder,
                                                                       const fs::path& at) {
        for (const auto& [name, number] : namesAfter(folder, cut, chance)) {
            const Node& node = nodes_[number];
            tree[at / name] = node.isFolder ? Bytes() : bytesAfter(node, cut, chance);
            if (node.isFolder)
                walk(node, at / name);
        }
    };
    walk(nodes_[root], {});
    return tree;
}

} // namespace marrowbox::test
