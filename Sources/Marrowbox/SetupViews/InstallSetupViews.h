#pragma once

namespace marrowbox {

/// Makes `import Marrowbox.SetupViews` work. Call it before loading a screen, with installAppearance().
void installSetupViews();

} // namespace marrowbox
