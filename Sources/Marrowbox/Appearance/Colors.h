#pragma once

#include <QColor>
#include <QObject>

namespace marrowbox {

enum class ColorMode { light, dark };

/// The colours that do not depend on a theme. Grounds first, then what is drawn on them.
struct Colors {
    Q_GADGET
    Q_PROPERTY(QColor window MEMBER window CONSTANT)
    Q_PROPERTY(QColor sidebar MEMBER sidebar CONSTANT)
    Q_PROPERTY(QColor card MEMBER card CONSTANT)
    Q_PROPERTY(QColor raised MEMBER raised CONSTANT)
    Q_PROPERTY(QColor sheet MEMBER sheet CONSTANT)
    Q_PROPERTY(QColor popup MEMBER popup CONSTANT)
    Q_PROPERTY(QColor field MEMBER field CONSTANT)
    Q_PROPERTY(QColor text MEMBER text CONSTANT)
    Q_PROPERTY(QColor muted MEMBER muted CONSTANT)
    Q_PROPERTY(QColor secondary MEMBER secondary CONSTANT)
    Q_PROPERTY(QColor faint MEMBER faint CONSTANT)
    Q_PROPERTY(QColor border MEMBER border CONSTANT)
    Q_PROPERTY(QColor fieldBorder MEMBER fieldBorder CONSTANT)
    Q_PROPERTY(QColor alert MEMBER alert CONSTANT)
    Q_PROPERTY(QColor alertFill MEMBER alertFill CONSTANT)
    Q_PROPERTY(QColor alertLabel MEMBER alertLabel CONSTANT)
    Q_PROPERTY(QColor success MEMBER success CONSTANT)
    Q_PROPERTY(QColor warning MEMBER warning CONSTANT)
    Q_PROPERTY(QColor overlay MEMBER overlay CONSTANT)
    Q_PROPERTY(QColor scrim MEMBER scrim CONSTANT)
    Q_PROPERTY(QColor shadow MEMBER shadow CONSTANT)
    Q_PROPERTY(QColor inverse MEMBER inverse CONSTANT)
    Q_PROPERTY(QColor inverseLabel MEMBER inverseLabel CONSTANT)

  public:
    QColor window;       ///< behind the page of a backup
    QColor sidebar;      ///< behind the list of backups
    QColor card;         ///< a raised area on the page
    QColor raised;       ///< the one of several choices that holds
    QColor sheet;        ///< a sheet or a question
    QColor popup;        ///< a menu or the list of a picker
    QColor field;        ///< where text is entered
    QColor text;         ///< the primary text colour
    QColor muted;        ///< captions and notes, readable on every ground
    QColor secondary;    ///< the primary text colour at opacity 0.52
    QColor faint;        ///< the primary text colour at opacity 0.38: what is switched off
    QColor border;       ///< the primary text colour at opacity 0.07
    QColor fieldBorder;  ///< the edge of what can be filled in or switched
    QColor alert;        ///< text and icons that tell of a failure
    QColor alertFill;    ///< a surface whose action cannot be undone
    QColor alertLabel;   ///< text on such a surface
    QColor success;      ///< text and icons that tell of a good end
    QColor warning;      ///< text and icons that ask for attention
    QColor overlay;      ///< laid over a filled surface while it is pointed at or pressed
    QColor scrim;        ///< between a sheet and the window behind it
    QColor shadow;       ///< below what floats
    QColor inverse;      ///< a tool tip
    QColor inverseLabel; ///< text on a tool tip
};

/// The colours of light or dark screens.
Colors colorsOf(ColorMode mode);

} // namespace marrowbox
