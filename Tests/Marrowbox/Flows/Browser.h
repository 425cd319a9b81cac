#pragma once

#include "Computer.h"

#include <QProcess>
#include <QString>

namespace marrowbox::test {

/// The browser in which somebody reads the page that the program has opened. Used on an event loop.
class Browser {
  public:
    explicit Browser(const Computer& computer) : computer_(computer) {}

    /// The page at this address, or at that of a link on the shown page, is being fetched.
    void open(const std::string& address);
    void follow(const QString& link);
    bool isLoading() const { return curl_.state() != QProcess::NotRunning; }
    /// The page that is shown.
    const QString& page();

  private:
    const Computer& computer_;
    QProcess curl_;
    QString page_;
};

} // namespace marrowbox::test
