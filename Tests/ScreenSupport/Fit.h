#pragma once

#include <QQuickWindow>
#include <QStringList>

namespace marrowbox::test {

/// What does not fit in a window as it is drawn now, a sentence each: a text of which something is left out
/// at its end, that reaches out of its control, its scrolling area or the window, or that lies on another
/// text or on a button. A text that is told to leave out its middle may do so: it is a name or a path, and a
/// tool tip shows it whole.
QStringList misfits(const QQuickWindow& window);

} // namespace marrowbox::test
