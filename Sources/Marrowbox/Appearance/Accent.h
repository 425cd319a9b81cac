#pragma once

#include "Marrowbox/Appearance/Colors.h"
#include "Models/AccentTheme.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace marrowbox {

/// The colours of one theme.
struct AccentColors {
    QColor color;   ///< as given: filled surfaces and swatches
    QColor onColor; ///< text on a filled surface
    QColor ink;     ///< text and icons in the theme, readable on every ground of the mode
    QColor tint;    ///< what translucent surfaces and borders are mixed from
};
AccentColors accentColors(AccentTheme theme, ColorMode mode);

/// "blue": as it is stored.
QString storedName(AccentTheme theme);

/// One theme for the screens. Lives as long as the program; its colours follow the mode.
class Accent : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QColor color READ color NOTIFY changed)
    Q_PROPERTY(QColor onColor READ onColor NOTIFY changed)
    Q_PROPERTY(QColor ink READ ink NOTIFY changed)
    Q_PROPERTY(QColor tint READ tint NOTIFY changed)

  public:
    Accent(AccentTheme theme, QObject* parent);

    QString name() const { return storedName(theme_); }
    /// The text in pickers: "Mint" for "sage", "Slate" for "graphite".
    QString title() const;
    QColor color() const { return colors_.color; }
    QColor onColor() const { return colors_.onColor; }
    QColor ink() const { return colors_.ink; }
    QColor tint() const { return colors_.tint; }

    void setMode(ColorMode mode);

  signals:
    void changed();

  private:
    AccentTheme theme_;
    AccentColors colors_;
};

} // namespace marrowbox
