#include "Marrowbox/Appearance/SymbolProvider.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace marrowbox {

namespace {

const QString folder = QStringLiteral(":/Marrowbox/Appearance/Symbols/");
constexpr QSize gridSize(24, 24);

// The drawings are black on nothing; what is white in them is cut out, so that a filled shape can carry a
// mark.
void inkInto(QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int ink = qAlpha(line[x]) - qRed(line[x]);
            line[x] =
                qPremultiply(qRgba(colour.red(), colour.green(), colour.blue(), ink * colour.alpha() / 255));
        }
    }
}

} // namespace

QStringList symbolNames() {
    QStringList names = QDir(folder).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (QString& name : names)
        name.chop(4);
    return names;
}

QImage drawSymbol(const QString& name, const QColor& colour, QSize size) {
    const QString file = folder + name + QStringLiteral(".svg");
    if (!QFile::exists(file))
        return {};
    QSvgRenderer renderer(file);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    inkInto(image, colour);
    return image;
}

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requested) {
    const QString name = id.section(QLatin1Char('/'), 0, 0);
    const QColor colour(id.section(QLatin1Char('/'), 1));
    const QImage image = drawSymbol(name, colour, requested.isValid() ? requested : gridSize);
    if (size)
        *size = image.size();
    return image;
}

} // namespace marrowbox
