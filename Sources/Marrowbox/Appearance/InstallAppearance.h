#pragma once

class QQmlEngine;

namespace marrowbox {

/// Makes `import Marrowbox.Appearance` work in an engine, symbols included. Call it before loading a screen.
void installAppearance(QQmlEngine& engine);

} // namespace marrowbox
