// marrowbox-icons MARK.svg FOLDER: the program's mark in every size that a desktop asks for, laid out as an
// icon theme.
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace {

bool render(QSvgRenderer& mark, int side, const QDir& theme) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    mark.render(&painter);
    painter.end();
    const QString folder = QStringLiteral("%1x%1/apps").arg(side);
    return theme.mkpath(folder) &&
           image.save(theme.filePath(folder + QStringLiteral("/net.marrowbox.Marrowbox.png")));
}

} // namespace

int main(int count, char** values) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, values);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    QSvgRenderer mark(arguments.at(1));
    const QDir theme(arguments.at(2) + QStringLiteral("/hicolor"));
    if (!mark.isValid())
        return 1;
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256, 512})
        if (!render(mark, side, theme))
            return 1;
    const QString scalable = theme.filePath(QStringLiteral("scalable/apps"));
    theme.mkpath(QStringLiteral("scalable/apps"));
    QFile::remove(scalable + QStringLiteral("/net.marrowbox.Marrowbox.svg"));
    return QFile::copy(arguments.at(1), scalable + QStringLiteral("/net.marrowbox.Marrowbox.svg")) ? 0 : 1;
}
