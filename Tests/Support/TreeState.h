#pragma once

#include <filesystem>
#include <string>

namespace marrowbox::test {

/// All that can be seen of a tree, a line an item: kind, mode, owner, last change, name, and content or link
/// target. Two equal texts mean that nothing in it changed. Links are not followed.
std::string treeState(const std::filesystem::path& root);

} // namespace marrowbox::test
