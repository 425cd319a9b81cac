#pragma once

#include "Marrowbox/Appearance/Accent.h"
#include "Marrowbox/Appearance/Colors.h"

#include <QFont>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <qqmlregistration.h>

class QQmlEngine;

namespace marrowbox {

/// What of the look can change while the program runs: light or dark, motion, and the theme of the selected
/// backup. The desktop's reader and the shell set it; the QML singleton Appearance reads it. One an engine;
/// main thread.
class AppearanceState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark WRITE setDark NOTIFY darkChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(QString theme READ theme WRITE setTheme NOTIFY themeChanged)
    Q_PROPERTY(marrowbox::Colors colors READ colors NOTIFY darkChanged)
    Q_PROPERTY(marrowbox::Accent* accent READ accent NOTIFY themeChanged)
    Q_PROPERTY(QVariantList accents READ accents CONSTANT)

  public:
    explicit AppearanceState(QObject* parent = nullptr);

    /// The one that an engine's screens read.
    static AppearanceState* of(QQmlEngine& engine);

    bool dark() const { return dark_; }
    void setDark(bool dark);
    bool reducedMotion() const { return reducedMotion_; }
    void setReducedMotion(bool reduced);
    /// The stored name of the theme of the selected backup; what is no theme's name means "blue".
    QString theme() const { return accent_->name(); }
    void setTheme(const QString& name);

    Colors colors() const { return colors_; }
    Accent* accent() const { return accent_; }
    /// All themes, in the order in which they are offered.
    QVariantList accents() const;
    /// The theme of this stored name, else blue.
    Q_INVOKABLE marrowbox::Accent* accentOf(const QString& name) const;
    /// How high a line of a text is in this font, before anything is added between lines.
    Q_INVOKABLE double heightOfLine(const QFont& font) const;

  signals:
    void darkChanged();
    void reducedMotionChanged();
    void themeChanged();

  private:
    bool dark_ = false;
    bool reducedMotion_ = false;
    Colors colors_;
    QList<Accent*> accents_;
    Accent* accent_ = nullptr;
};

} // namespace marrowbox
