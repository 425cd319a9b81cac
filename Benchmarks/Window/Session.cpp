#include "Window/Session.h"

#include <QCoreApplication>
#include <chrono>
#include <stdexcept>

namespace marrowbox::bench {

namespace {

constexpr int patience = 20'000; // milliseconds
constexpr int longPatience = 600'000;

} // namespace

Session::Session() {
    screen_.setStandardErrorFile(QProcess::nullDevice());
    screen_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1920x1200x24", "-nolisten", "tcp"});
    while (!screen_.canReadLine())
        if (!screen_.waitForReadyRead(patience))
            throw std::runtime_error("The X server Xvfb does not start.");
    display_ = ":" + QString::fromUtf8(screen_.readLine()).trimmed();
}

Session::~Session() {
    screen_.terminate();
    screen_.waitForFinished();
}

QProcessEnvironment Session::environment(const std::filesystem::path& data) const {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("WAYLAND_DISPLAY");
    environment.insert("DISPLAY", display_);
    environment.insert("DBUS_SESSION_BUS_ADDRESS", bus_.address());
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("QT_QUICK_BACKEND", "software");
    environment.insert("MARROW_DATA_DIR", QString::fromStdString(data));
    return environment;
}

double millisecondsToFirstFrame(const Session& session, const std::filesystem::path& data) {
    QProcess program;
    auto environment = session.environment(data);
    // The toolkit itself says when it has drawn.
    environment.insert("QT_LOGGING_RULES", "qt.scenegraph.time.renderloop.debug=true");
    program.setProcessEnvironment(environment);
    program.setReadChannel(QProcess::StandardError);
    const auto begin = std::chrono::steady_clock::now();
    program.start(MARROWBOX_PROGRAM, QStringList());
    QByteArray written;
    while (!written.contains("rame rendered")) {
        if (!program.waitForReadyRead(patience))
            throw std::runtime_error("The program draws nothing: " + written.toStdString());
        written += program.readAll();
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    program.kill(); // it has nothing to bring to an end, and the next round wants a quiet machine
    program.waitForFinished();
    return time.count();
}

std::vector<double> measuredInside(const Session& session, const std::filesystem::path& data,
                                   const QStringList& arguments) {
    QProcess program;
    program.setProcessEnvironment(session.environment(data));
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationFilePath(), arguments);
    if (!program.waitForFinished(longPatience) || program.exitCode() != 0)
        throw std::runtime_error("A measuring process failed.");
    std::vector<double> numbers;
    for (const QByteArray& word : program.readAll().simplified().split(' '))
        numbers.push_back(word.toDouble());
    return numbers;
}

} // namespace marrowbox::bench
