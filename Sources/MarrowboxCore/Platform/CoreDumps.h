#pragma once

namespace marrowbox {

/// Keeps this process, and every program that it starts from now on, from leaving an image of its memory on
/// the disk when it crashes: tokens stand in there. For good; a child cannot take it back. Throws
/// std::system_error.
void forbidCoreDumps();

} // namespace marrowbox
