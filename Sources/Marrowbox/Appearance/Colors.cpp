#include "Marrowbox/Appearance/Colors.h"

#include "Marrowbox/Appearance/Contrast.h"

namespace marrowbox {

namespace {

// The same in both modes: what fills a surface carries its own text colour.
const QColor alert = QColor::fromRgbF(0.80F, 0.13F, 0.19F);
const QColor success = QColor::fromRgbF(0.10F, 0.55F, 0.30F);

/// A little more than the strongest tint of it that text in the colour of a failure stands on, since the tint
/// becomes lighter with the text.
constexpr float strongestAlertTint = 0.11F;

QColor faded(QColor colour, float opacity) {
    colour.setAlphaF(opacity);
    return colour;
}

Colors withShared(Colors colors) {
    colors.secondary = faded(colors.text, 0.52F);
    colors.faint = faded(colors.text, 0.38F);
    colors.border = faded(colors.text, 0.07F);
    colors.alertFill = alert;
    colors.alertLabel = Qt::white;
    colors.overlay = Qt::black;
    return colors;
}

Colors lightColors() {
    return withShared({
        .window = QColor(0xFCFCFB),
        .sidebar = QColor(0xF4F4F1),
        .card = QColor(0xFFFFFF),
        .raised = QColor(0xFFFFFF),
        .sheet = QColor(0xFCFCFB),
        .popup = QColor(0xFFFFFF),
        .field = QColor(0xFFFFFF),
        .text = QColor(0x17191D),
        .muted = QColor(0x5E6168),
        .fieldBorder = QColor(0xC9CACC),
        .alert = alert,
        .success = success,
        .warning = QColor(0xA8530A),
        .scrim = QColor(0x17, 0x19, 0x1D, 0x3D),
        .shadow = QColor(0x17, 0x19, 0x1D, 0x10),
        .inverse = QColor(0x2B2D33),
        .inverseLabel = QColor(0xF6F6F4),
    });
}

Colors darkColors() {
    Colors colors = withShared({
        .window = QColor(0x17181B),
        .sidebar = QColor(0x1C1D21),
        .card = QColor(0x1F2024),
        .raised = QColor(0x383A41),
        .sheet = QColor(0x202126),
        .popup = QColor(0x26272C),
        .field = QColor(0x1A1B1F),
        .text = QColor(0xF3F4F6),
        .muted = QColor(0xA6A9B1),
        .fieldBorder = QColor(0x4B4D55),
        .warning = QColor(0xF2A65A),
        .scrim = QColor(0x00, 0x00, 0x00, 0x8C),
        .shadow = QColor(0x00, 0x00, 0x00, 0x30),
        .inverse = QColor(0x3A3C43),
        .inverseLabel = QColor(0xF3F4F6),
    });
    // A menu shows what cannot be undone on a highlight of the same colour.
    colors.alert =
        lightenedOn(over(faded(lightenedOn(colors.popup, alert), strongestAlertTint), colors.popup), alert);
    colors.success = lightenedOn(colors.popup, success);
    colors.secondary = strengthenedOn(colors.popup, colors.secondary);
    colors.faint = strengthenedOn(colors.popup, colors.faint);
    return colors;
}

} // namespace

Colors colorsOf(ColorMode mode) {
    return mode == ColorMode::dark ? darkColors() : lightColors();
}

} // namespace marrowbox
