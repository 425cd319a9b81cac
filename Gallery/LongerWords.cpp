#include "Gallery/LongerWords.h"

#include <QCoreApplication>
#include <QSet>

namespace marrowbox::gallery {

namespace {

QSet<QString>& said() {
    static QSet<QString> texts;
    return texts;
}

} // namespace

LongerWords::LongerWords(QObject* parent) : QTranslator(parent) {
    QCoreApplication::installTranslator(this);
}

QString LongerWords::translate(const char* context, const char* source, const char* /*disambiguation*/,
                               int /*count*/) const {
    const QString text = QString::fromUtf8(source);
    said().insert(QString::fromUtf8(context) + u'\t' + QString(text).replace(u'\n', QStringLiteral("\\n")));
    const QString words = QStringLiteral(" eller nogle flere ord om det samme og lidt til bagefter");
    return text + words.left(text.size() * 3 / 10);
}

QStringList saidInLongerWords() {
    QStringList texts = said().values();
    texts.sort();
    return texts;
}

Scene inLongerWords(Scene scene) {
    scene.name += QStringLiteral("-longer-words");
    scene.state = [state = std::move(scene.state)](QObject* parent) {
        new LongerWords(parent);
        return state(parent);
    };
    return scene;
}

} // namespace marrowbox::gallery
