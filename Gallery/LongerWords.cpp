#include "Gallery/LongerWords.h"

#include <QCoreApplication>

namespace marrowbox::gallery {

LongerWords::LongerWords(QObject* parent) : QTranslator(parent) {
    QCoreApplication::installTranslator(this);
}

QString LongerWords::translate(const char* /*context*/, const char* source, const char* /*disambiguation*/,
                               int /*count*/) const {
    const QString text = QString::fromUtf8(source);
    const QString words = QStringLiteral(" eller nogle flere ord om det samme og lidt til bagefter");
    return text + words.left(text.size() * 3 / 10);
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
