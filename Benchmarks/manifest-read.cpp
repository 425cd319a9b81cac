// Reading and checking a manifest of 100,000 entries, against Boost.JSON parsing the same bytes.
#include "Measuring/Manifests.h"
#include "Measuring/Measure.h"
#include "Models/BackupPaths.h"
#include "Models/JSONFile.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <filesystem>

int main() {
    using namespace marrowbox;
    const fs::path path = fs::temp_directory_path() / "marrowbox-bench-manifest.json";
    JSONFile::write(bench::manifest(100'000), path);
    const std::string text = readFile(path);
    const auto ratio = bench::compare(
        15,
        [&] {
            const auto snapshot = JSONFile::read<Snapshot>(path);
            BackupPaths::validateEntries(snapshot.entries);
        },
        [&] {
            boost::json::monotonic_resource memory;
            boost::json::parse(text, &memory);
        });
    fs::remove(path);
    return bench::reportAtMost("manifest-read", ratio.ratio, 2.0, bench::describe(ratio));
}
