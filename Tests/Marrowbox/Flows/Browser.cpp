#include "Browser.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace marrowbox::test {

void Browser::open(const std::string& address) {
    // What the program itself is built on moves no byte on this side.
    const auto text = [](const std::string& value) { return QString::fromStdString(value); };
    curl_.start("/usr/bin/curl", {"--disable", "--silent", "--show-error", "--globoff", "--location",
                                  "--noproxy", "127.0.0.1", "--proxy", text(computer_.google.proxyURL()),
                                  "--cacert", text(computer_.authority()), text(address)});
}

const QString& Browser::page() {
    if (const QString fresh = QString::fromUtf8(curl_.readAllStandardOutput()); !fresh.isEmpty())
        page_ = fresh;
    return page_;
}

void Browser::follow(const QString& link) {
    const QRegularExpression anchor("<a href=\"([^\"]+)\">" + QRegularExpression::escape(link) + "</a>");
    const QRegularExpressionMatch match = anchor.match(page());
    if (!match.hasMatch()) {
        ADD_FAILURE() << "There is no link “" << link.toStdString()
                      << "” on the page: " << page().toStdString();
        return;
    }
    open(match.captured(1).replace("&amp;", "&").toStdString());
}

} // namespace marrowbox::test
