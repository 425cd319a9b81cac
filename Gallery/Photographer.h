#pragma once

#include "Gallery/Scene.h"

#include <QImage>
#include <QStringList>

namespace marrowbox::gallery {

enum class Light { light, dark };

/// Shows a scene in a window of its own and takes its picture once nothing moves any more. Throws
/// std::runtime_error for a scene that cannot be shown, draws nothing, makes QML warn, or in which something
/// does not fit.
QImage photograph(const Scene& scene, Light light);

} // namespace marrowbox::gallery
