#include "Measuring/ScratchRepository.h"

#include "Models/JSONFile.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <unistd.h>

namespace marrowbox::bench {

namespace {

/// Files of given sizes to link to, a new one whenever a file has as many links as its file system allows.
class LinkSource {
  public:
    explicit LinkSource(fs::path folder) : folder_(std::move(folder)) {}

    void link(std::int64_t size, const fs::path& to) {
        const auto known = files_.find(size);
        if (known != files_.end() && ::link(known->second.c_str(), to.c_str()) == 0)
            return;
        const fs::path made = folder_ / (std::to_string(size) + "-" + std::to_string(count_++));
        openFile(made, O_WRONLY | O_CREAT);
        fs::resize_file(made, static_cast<std::uintmax_t>(size));
        files_[size] = made;
        if (::link(made.c_str(), to.c_str()) != 0)
            throwSystemError("link", to);
    }

  private:
    fs::path folder_;
    std::map<std::int64_t, fs::path> files_;
    int count_ = 0;
};

} // namespace

BackupRepository repositoryIn(const fs::path& folder) {
    return BackupRepository(folder, *Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210"));
}

ScratchRepository::ScratchRepository(const std::string& name, const fs::path& under)
    : folder_(under / ("marrowbox-bench-" + name + "-" + std::to_string(::getpid()))),
      repository_(repositoryIn(folder_)) {
    fs::create_directories(folder_);
    repository_.initialize();
}

ScratchRepository::~ScratchRepository() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void ScratchRepository::publish(const Snapshot& snapshot) const {
    JSONFile::write(snapshot, repository_.manifest(snapshot.id));
}

void ScratchRepository::placeObjects(const Snapshot& snapshot) const {
    const fs::path targets = folder_ / "Targets";
    fs::create_directories(targets);
    LinkSource source(targets);
    for (const auto& entry : snapshot.entries) {
        if (!entry->objectHash)
            continue;
        const fs::path object = repository_.objectPaths().object(*entry->objectHash);
        if (linkStatus(object))
            continue;
        makeDirectories(object.parent_path());
        source.link(entry->storedSize, object);
    }
}

} // namespace marrowbox::bench
