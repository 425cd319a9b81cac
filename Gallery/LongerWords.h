#pragma once

#include "Gallery/Scene.h"

#include <QStringList>
#include <QTranslator>

namespace marrowbox::gallery {

/// A language whose every text is three tenths longer. It is spoken for as long as its parent lives.
class LongerWords : public QTranslator {
  public:
    explicit LongerWords(QObject* parent);

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char* disambiguation,
                      int count) const override;
};

/// What has been said in it so far, a line each: the context, a tab, and the text with line ends as \n.
QStringList saidInLongerWords();

/// The same scene in that language.
Scene inLongerWords(Scene scene);

} // namespace marrowbox::gallery
