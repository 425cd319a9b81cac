#include "Support/ScratchFolder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace marrowbox::test {

ScratchFolder::ScratchFolder() : ScratchFolder(std::filesystem::temp_directory_path()) {
}

ScratchFolder::ScratchFolder(const std::filesystem::path& parent) {
    std::string name = (parent / "marrowbox-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    path_ = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace marrowbox::test
