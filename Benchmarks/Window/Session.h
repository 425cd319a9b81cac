#pragma once

#include "AppSupport/PrivateBus.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <filesystem>

namespace marrowbox::bench {

/// A desktop without a screen: an X server and a message bus that nobody else uses. Programs in it draw
/// without the help of a graphics card.
class Session {
  public:
    /// Throws std::runtime_error when there is no X server to start.
    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    /// For a program that keeps its data in this folder.
    QProcessEnvironment environment(const std::filesystem::path& data) const;

  private:
    test::PrivateBus bus_;
    QProcess screen_;
    QString display_;
};

/// Milliseconds from the start of the program to its first frame in the session. The program is ended then.
double millisecondsToFirstFrame(const Session& session, const std::filesystem::path& data);

/// Runs this program again as one that measures itself in the session, and gives the numbers that it writes.
std::vector<double> measuredInside(const Session& session, const std::filesystem::path& data,
                                   const QStringList& arguments);

} // namespace marrowbox::bench
