// marrowbox-gallery [--keep-none] FOLDER [NAME...]: takes a picture of every scene, or of those whose names
// begin so, in light and dark, at the scale that QT_SCALE_FACTOR says, and writes it into the folder unless
// told to keep none: that is two thirds of the time. Ends with 1 and says why when a scene cannot be shown,
// makes QML warn, or when a text in it does not fit.
#include "Gallery/LongerWords.h"
#include "Gallery/Photographer.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextStream>
#include <exception>

namespace {

using namespace marrowbox::gallery;

bool isWanted(const QString& name, const QStringList& beginnings) {
    if (beginnings.isEmpty())
        return true;
    for (const QString& beginning : beginnings)
        if (name.startsWith(beginning))
            return true;
    return false;
}

QString fileName(const Scene& scene, Light light) {
    return QStringLiteral("%1-%2@%3x.png")
        .arg(scene.name, light == Light::dark ? QStringLiteral("dark") : QStringLiteral("light"))
        .arg(qGuiApp->devicePixelRatio());
}

bool take(const Scene& scene, Light light, const QDir& folder, bool isKept) {
    try {
        const QImage picture = photograph(scene, light);
        return !isKept || picture.save(folder.filePath(fileName(scene, light)));
    } catch (const std::exception& failure) {
        QTextStream(stderr) << failure.what() << Qt::endl;
        return false;
    }
}

/// For a test that holds them against what can be found for translation.
void writeTexts(const QDir& folder) {
    QFile file(folder.filePath(QStringLiteral("texts.tsv")));
    if (file.open(QIODevice::WriteOnly))
        file.write((saidInLongerWords().join(u'\n') + u'\n').toUtf8());
}

} // namespace

int main(int count, char** values) {
    const QGuiApplication application(count, values);
    QStringList arguments = QCoreApplication::arguments();
    const bool areKept = arguments.removeAll(QStringLiteral("--keep-none")) == 0;
    if (arguments.size() < 2)
        return 2;
    const QDir folder(arguments.at(1));
    folder.mkpath(QStringLiteral("."));
    int taken = 0;
    int failed = 0;
    for (const Scene& scene : allScenes()) {
        if (!isWanted(scene.name, arguments.mid(2)))
            continue;
        for (const Light light : {Light::light, Light::dark})
            ++(take(scene, light, folder, areKept) ? taken : failed);
    }
    writeTexts(folder);
    QTextStream(stdout) << taken << " pictures "
                        << (areKept ? QStringLiteral("in ") + folder.absolutePath() : QStringLiteral("taken"))
                        << Qt::endl;
    return failed == 0 && taken > 0 ? 0 : 1;
}
