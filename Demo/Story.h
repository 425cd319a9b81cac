#pragma once

#include "Demo/Stage.h"

#include <stop_token>

namespace marrowbox::demo {

/// How many days pass on the stage's clock.
inline constexpr int storyDays = 41;

/// The demonstration itself, told on standard output: an account is connected, two places are backed up,
/// changed and backed up again; then their first and last snapshots come back as folders, and one as a
/// volume, and each is held against what Google Drive held at that time. Throws whatever goes wrong.
asio::awaitable<void> demonstrate(Stage& stage, std::stop_token stop);

} // namespace marrowbox::demo
