#include "Marrowbox/Appearance/Contrast.h"

#include <algorithm>
#include <cmath>

namespace marrowbox {

namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& colour) {
    return 0.2126 * linear(static_cast<double>(colour.redF())) +
           0.7152 * linear(static_cast<double>(colour.greenF())) +
           0.0722 * linear(static_cast<double>(colour.blueF()));
}

float mixed(float top, float ground, float alpha) {
    return top * alpha + ground * (1 - alpha);
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor over(const QColor& top, const QColor& ground) {
    const float alpha = top.alphaF();
    return QColor::fromRgbF(mixed(top.redF(), ground.redF(), alpha),
                            mixed(top.greenF(), ground.greenF(), alpha),
                            mixed(top.blueF(), ground.blueF(), alpha));
}

QColor lightenedOn(const QColor& ground, const QColor& colour, double least) {
    const QColor given = colour.toHsl();
    constexpr float step = 0.005F;
    QColor result = colour;
    for (float lightness = given.lightnessF(); contrast(result, ground) < least && lightness < 1;) {
        lightness = std::min(lightness + step, 1.0F);
        const QColor lighter = QColor::fromHslF(given.hslHueF(), given.hslSaturationF(), lightness);
        result = lighter.toRgb();
    }
    return result;
}

QColor strengthenedOn(const QColor& ground, const QColor& colour, double least) {
    constexpr float step = 0.01F;
    QColor result = colour;
    while (contrast(over(result, ground), ground) < least && result.alphaF() < 1)
        result.setAlphaF(std::min(result.alphaF() + step, 1.0F));
    return result;
}

} // namespace marrowbox
