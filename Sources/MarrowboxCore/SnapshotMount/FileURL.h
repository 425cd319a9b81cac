#pragma once

#include "Models/JSONReader.h"
#include "Models/JSONWriter.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace marrowbox {

namespace fs = std::filesystem;

/// A path as the mount registry writes it: the absolute text of a file URL. It is read as it stands, since
/// the registry may have been edited; what it names is judged later.
struct FileURL {
    std::string text;

    static FileURL ofFile(const fs::path& path);
    /// Ends in a slash, as the URL of a folder does.
    static FileURL ofFolder(const fs::path& path);

    /// The path that the URL names, standardized. A text that is no file URL gives a relative path, which
    /// equals no path of ours.
    fs::path path() const;

    friend bool operator==(const FileURL&, const FileURL&) = default;
};

template <>
class JSONTypeOf<FileURL> final : public JSONType {
  public:
    std::string_view expectation() const override { return "a URL"; }
    void string(void* target, std::string_view value, JSONSharing*) const override {
        if (value.empty())
            throw Mismatch();
        static_cast<FileURL*>(target)->text = value;
    }
};

} // namespace marrowbox
