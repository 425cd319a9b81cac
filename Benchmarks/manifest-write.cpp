// Writing a manifest of 100,000 entries, against writing the same bytes.
#include "Measuring/Manifests.h"
#include "Measuring/Measure.h"
#include "Models/JSONFile.h"

#include <filesystem>

int main() {
    using namespace marrowbox;
    const fs::path path = fs::temp_directory_path() / "marrowbox-bench-manifest.json";
    const Snapshot snapshot = bench::manifest(100'000);
    const std::string text = encodeJSON(snapshot, JSONStyle::pretty);
    const auto ratio = bench::compare(
        15, [&] { JSONFile::write(snapshot, path); },
        [&] {
            AtomicFile file(path);
            writeAll(file.descriptor(), text);
            file.publish();
        });
    fs::remove(path);
    return bench::reportAtMost("manifest-write", ratio.ratio, 3.0, bench::describe(ratio));
}
