#include "Marrowbox/Appearance/AppearanceState.h"

#include <QFontMetricsF>
#include <QQmlEngine>
#include <boost/describe/enumerators.hpp>
#include <boost/mp11/algorithm.hpp>
#include <cmath>

namespace marrowbox {

AppearanceState::AppearanceState(QObject* parent) : QObject(parent), colors_(colorsOf(ColorMode::light)) {
    boost::mp11::mp_for_each<boost::describe::describe_enumerators<AccentTheme>>(
        [this](auto described) { accents_.append(new Accent(described.value, this)); });
    accent_ = accents_.first();
}

AppearanceState* AppearanceState::of(QQmlEngine& engine) {
    return engine.singletonInstance<AppearanceState*>(
        qmlTypeId("Marrowbox.Appearance", 1, 0, "AppearanceState"));
}

void AppearanceState::setDark(bool dark) {
    if (dark == dark_)
        return;
    dark_ = dark;
    const ColorMode mode = dark ? ColorMode::dark : ColorMode::light;
    colors_ = colorsOf(mode);
    for (Accent* accent : accents_)
        accent->setMode(mode);
    emit darkChanged();
}

void AppearanceState::setReducedMotion(bool reduced) {
    if (reduced == reducedMotion_)
        return;
    reducedMotion_ = reduced;
    emit reducedMotionChanged();
}

void AppearanceState::setTheme(const QString& name) {
    Accent* const chosen = accentOf(name);
    if (chosen == accent_)
        return;
    accent_ = chosen;
    emit themeChanged();
}

QVariantList AppearanceState::accents() const {
    QVariantList list;
    for (Accent* accent : accents_)
        list.append(QVariant::fromValue(accent));
    return list;
}

Accent* AppearanceState::accentOf(const QString& name) const {
    for (Accent* accent : accents_)
        if (accent->name() == name)
            return accent;
    return accents_.first();
}

double AppearanceState::heightOfLine(const QFont& font) const {
    return std::ceil(QFontMetricsF(font).height()); // as lines are laid out
}

} // namespace marrowbox
