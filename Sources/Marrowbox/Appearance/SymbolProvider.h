#pragma once

#include <QColor>
#include <QQuickImageProvider>
#include <QStringList>

namespace marrowbox {

/// The names of all symbols, sorted.
QStringList symbolNames();

/// A symbol drawn in one colour; a null image for a name that does not exist.
QImage drawSymbol(const QString& name, const QColor& colour, QSize size);

/// Gives the screens `image://symbol/{name}/{colour}`.
class SymbolProvider : public QQuickImageProvider {
  public:
    SymbolProvider() : QQuickImageProvider(QQmlImageProviderBase::Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

} // namespace marrowbox
