#pragma once

namespace marrowbox {

/// Makes `import Marrowbox.ContentView` work. Call it once, before loading a screen.
void installContentView();

} // namespace marrowbox
