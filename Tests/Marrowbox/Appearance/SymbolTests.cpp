#include "Marrowbox/Appearance/SymbolProvider.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

// What the screens and the tray show, by the names that they use.
const QStringList used{"arrow.clockwise",
                       "arrow.right",
                       "arrow.triangle.2.circlepath",
                       "arrow.triangle.2.circlepath.cloud",
                       "arrow.up.right",
                       "checkmark",
                       "checkmark.circle.fill",
                       "chevron.left",
                       "chevron.right",
                       "clock",
                       "clock.arrow.circlepath",
                       "clock.arrow.trianglehead.counterclockwise.rotate.90",
                       "cloud.checkmark",
                       "cloud.fill",
                       "doc.text",
                       "eject",
                       "ellipsis",
                       "envelope",
                       "envelope.badge.exclamationmark",
                       "envelope.slash",
                       "exclamationmark.circle",
                       "exclamationmark.triangle.fill",
                       "externaldrive",
                       "externaldrive.badge.exclamationmark",
                       "folder",
                       "folder.fill",
                       "gearshape",
                       "info.circle",
                       "lock",
                       "person.2.crop.square.stack",
                       "person.2.crop.square.stack.fill",
                       "person.crop.circle.badge.plus",
                       "plus",
                       "xmark"};

int inkedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    return count;
}

QSet<QString> namesInQml() {
    static const QRegularExpression name(
        QStringLiteral(R"re((?:symbol|Icon \{ name|name): "([a-z0-9.]+)")re"));
    QSet<QString> names;
    QDirIterator files(QStringLiteral(MARROWBOX_SOURCES), {QStringLiteral("*.qml")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        auto matches = name.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext())
            names.insert(matches.next().captured(1));
    }
    return names;
}

} // namespace

TEST(Symbols, drawsEveryNameThatIsUsed) {
    const QStringList names = used + namesInQml().values();
    for (const QString& name : names) {
        const QImage image = drawSymbol(name, Qt::black, QSize(24, 24));
        ASSERT_FALSE(image.isNull()) << name.toStdString();
        EXPECT_GT(inkedPixels(image), 12) << name.toStdString();
        EXPECT_LT(inkedPixels(image), 24 * 24) << name.toStdString();
    }
}

TEST(Symbols, shareOneGridAndOneWeight) {
    for (const QString& name : symbolNames()) {
        QFile file(QStringLiteral(":/Marrowbox/Appearance/Symbols/%1.svg").arg(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString drawing = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(drawing.contains(QStringLiteral("viewBox=\"0 0 24 24\""))) << name.toStdString();
        EXPECT_EQ(drawing.count(QStringLiteral("stroke-width=")), 1) << name.toStdString();
        EXPECT_TRUE(drawing.contains(QStringLiteral("stroke-width=\"1.6\""))) << name.toStdString();
    }
}

TEST(Symbols, takeTheColorThatTheyAreAskedFor) {
    const QImage image = drawSymbol("folder.fill", QColor(200, 30, 60), QSize(48, 48));
    EXPECT_EQ(image.pixel(24, 34), qRgb(200, 30, 60));
}

TEST(Symbols, cutAMarkOutOfAFilledShape) {
    const QImage image = drawSymbol("checkmark.circle.fill", Qt::black, QSize(240, 240));
    EXPECT_EQ(qAlpha(image.pixel(120, 60)), 255);
    EXPECT_EQ(qAlpha(image.pixel(108, 150)), 0);
}

TEST(Symbols, areNothingUnderAnUnknownName) {
    EXPECT_TRUE(drawSymbol("no.such.symbol", Qt::black, QSize(24, 24)).isNull());
}

TEST(Symbols, comeInTheSizeThatAScreenAsksFor) {
    SymbolProvider provider;
    QSize size;
    const QImage image = provider.requestImage("plus/#ff102030", &size, QSize(40, 40));
    EXPECT_EQ(size, QSize(40, 40));
    EXPECT_EQ(image.pixel(20, 20), qRgb(0x10, 0x20, 0x30));
}

} // namespace marrowbox
