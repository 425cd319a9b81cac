#pragma once

#include <QColor>

namespace marrowbox {

/// The least contrast at which text of any size is comfortably read.
inline constexpr double readableContrast = 4.5;

/// The contrast of two opaque colours by their relative luminance: 1 for equal ones, 21 for black on white.
double contrast(const QColor& one, const QColor& other);

/// What the eye sees of a translucent colour on an opaque ground.
QColor over(const QColor& top, const QColor& ground);

/// The colour in the same hue, lightened just as far as text in it needs to be read on a dark ground. A
/// colour that is readable already stays as it is.
QColor lightenedOn(const QColor& ground, const QColor& colour, double least = readableContrast);

/// The translucent colour, made just as opaque as text in it needs to be read on a dark ground.
QColor strengthenedOn(const QColor& ground, const QColor& colour, double least = readableContrast);

} // namespace marrowbox
