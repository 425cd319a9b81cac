#include "Marrowbox/Appearance/Accent.h"

#include "Marrowbox/Appearance/Contrast.h"

#include <boost/describe/enum_to_string.hpp>

namespace marrowbox {

namespace {

/// The strongest tint that text in the theme's own colour stands on.
constexpr float strongestTint = 0.13F;

QColor givenColor(AccentTheme theme) {
    switch (theme) {
    case AccentTheme::blue:
        return QColor::fromRgbF(0.14F, 0.39F, 0.92F);
    case AccentTheme::sage:
        return QColor::fromRgbF(0.02F, 0.51F, 0.34F);
    case AccentTheme::teal:
        return QColor::fromRgbF(0.00F, 0.50F, 0.54F);
    case AccentTheme::indigo:
        return QColor::fromRgbF(0.33F, 0.32F, 0.88F);
    case AccentTheme::violet:
        return QColor::fromRgbF(0.59F, 0.24F, 0.81F);
    case AccentTheme::coral:
        return QColor::fromRgbF(0.82F, 0.20F, 0.26F);
    case AccentTheme::sunshine:
        return QColor::fromRgbF(0.98F, 0.72F, 0.16F);
    case AccentTheme::graphite:
        return QColor::fromRgbF(0.36F, 0.42F, 0.51F);
    }
    return {};
}

// Yellow cannot be read on a light ground, nor white on yellow.
QColor givenInk(AccentTheme theme) {
    return theme == AccentTheme::sunshine ? QColor::fromRgbF(0.28F, 0.19F, 0.02F) : givenColor(theme);
}

QColor givenOnColor(AccentTheme theme) {
    return theme == AccentTheme::sunshine ? givenInk(theme) : QColor(Qt::white);
}

} // namespace

AccentColors accentColors(AccentTheme theme, ColorMode mode) {
    AccentColors colors{givenColor(theme), givenOnColor(theme), givenInk(theme), givenColor(theme)};
    if (mode == ColorMode::light)
        return colors;
    const QColor lightestGround = colorsOf(mode).popup;
    colors.tint = lightenedOn(lightestGround, colors.color);
    QColor surface = colors.tint;
    surface.setAlphaF(strongestTint);
    // The filled colour is the one that people know a theme by; its ink on a dark ground starts from there.
    colors.ink = lightenedOn(over(surface, lightestGround), colors.color);
    return colors;
}

QString storedName(AccentTheme theme) {
    return QString::fromLatin1(boost::describe::enum_to_string(theme, ""));
}

Accent::Accent(AccentTheme theme, QObject* parent)
    : QObject(parent), theme_(theme), colors_(accentColors(theme, ColorMode::light)) {
}

QString Accent::title() const {
    switch (theme_) {
    case AccentTheme::blue:
        return tr("Blue");
    case AccentTheme::sage:
        return tr("Mint");
    case AccentTheme::teal:
        return tr("Teal");
    case AccentTheme::indigo:
        return tr("Indigo");
    case AccentTheme::violet:
        return tr("Violet");
    case AccentTheme::coral:
        return tr("Coral");
    case AccentTheme::sunshine:
        return tr("Sunshine");
    case AccentTheme::graphite:
        return tr("Slate");
    }
    return {};
}

void Accent::setMode(ColorMode mode) {
    colors_ = accentColors(theme_, mode);
    emit changed();
}

} // namespace marrowbox
