#include "Marrowbox/ContentView/Figures.h"

#include <QCoreApplication>
#include <QLocale>

namespace marrowbox {

QString sizeText(std::int64_t bytes, const Formats& formats) {
    if (bytes == 0)
        return QCoreApplication::translate("Figures", "0 B");
    return QString::fromStdString(formats.byteCount(bytes));
}

QString countText(std::int64_t count) {
    return QLocale().toString(static_cast<qlonglong>(count));
}

QString summaryText(const RunSummary& summary) {
    return QCoreApplication::translate("Figures", "%1 new · %2 updated · %3 unchanged")
        .arg(countText(summary.added), countText(summary.updated), countText(summary.unchanged));
}

} // namespace marrowbox
