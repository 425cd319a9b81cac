#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::test {

/// What a file holds; several states of a disk share it.
using Bytes = std::shared_ptr<const std::string>;

/// One change of a folder on a disk. Paths are relative to the folder, which is itself the empty path.
struct StorageChange {
    enum class Kind { makeFile, makeFolder, write, move, link, remove, synchronize };

    Kind kind;
    std::string path;
    std::string target = {}; ///< Where a move or a link leads.
    Bytes bytes = {};        ///< What the file holds after a write; nothing for a folder.
};

/// The files and folders of a tree by their relative paths; a folder holds no bytes.
using StoredTree = std::map<std::string, Bytes>;

StoredTree readTree(const std::filesystem::path& folder);
/// Into a folder that exists and is empty. Files get mode 0600 and folders 0700.
void writeTree(const StoredTree& tree, const std::filesystem::path& folder);

/// What a power cut does to names and bytes that nobody has synchronised. A name is an entry of a folder, its
/// removal, or both at once for a move inside one folder.
struct PowerCut {
    enum class Names { lost, kept, latestKept, byChance };
    enum class Data { lost, half, zeroes, kept, byChance };

    std::string_view words;
    Names names;
    Data data;
    unsigned seed = 0;
};

/// The cuts that are tried at each moment, the last of them by chance.
std::vector<PowerCut> powerCuts(unsigned moment);

/// A folder on a disk that keeps what it was told to synchronise and nothing else. It promises no more than
/// the standard does: bytes last once their file was synchronised, and a name once its folder was,
/// each for itself and in no order. Every file system that people use is kinder.
class StorageModel {
  public:
    /// All of the tree is on stable storage.
    explicit StorageModel(const StoredTree& tree);

    /// Changes that a file system would refuse change nothing.
    void apply(const StorageChange& change);

    /// What programs see.
    StoredTree seen() const;
    /// What is found after the power was cut now.
    StoredTree after(const PowerCut& cut) const;
    /// The number that stands for the file or folder at a path as long as the model lives.
    std::optional<std::size_t> find(std::string_view path) const;
    bool isFolder(std::size_t number) const { return nodes_[number].isFolder; }

  private:
    using Names = std::map<std::string, std::size_t, std::less<>>;
    /// One step of a folder's names that the disk has not been told to keep.
    struct NameChange {
        std::string removed;
        std::string added;
        std::size_t number = 0;
    };
    struct Node {
        bool isFolder = false;
        Bytes bytes;     ///< What programs read.
        Bytes lasting;   ///< What has been synchronised; nothing at first.
        Names names;     ///< What programs see in the folder.
        Names lastNames; ///< What has been synchronised of them.
        std::vector<NameChange> pending;
    };
    struct Place {
        std::size_t folder;
        std::string name;
    };

    std::optional<Place> placeOf(std::string_view path) const;
    void make(const std::string& path, bool isFolder);
    void write(const std::string& path, const Bytes& bytes);
    void move(const std::string& from, const std::string& to);
    void link(const std::string& from, const std::string& to);
    void remove(const std::string& path);
    static void change(Node& folder, const NameChange& step);
    static void step(Names& names, const NameChange& change);
    static void synchronize(Node& node);
    static Names namesAfter(const Node& folder, const PowerCut& cut, std::mt19937& chance);
    static Bytes bytesAfter(const Node& file, const PowerCut& cut, std::mt19937& chance);

    std::vector<Node> nodes_;
};

} // namespace marrowbox::test
