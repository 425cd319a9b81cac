#include "FlowWorld.h"

#include "Models/JSONFile.h"

#include <QAccessible>
#include <QApplication>
#include <QQuickWindow>
#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fstream>

namespace marrowbox::test {

namespace {

constexpr double hour = 3600;

QStringList warnings;

/// What Qt says of a platform without a window manager or a tray, which is none of the program's doing.
bool isOfThePlatform(const QString& message) {
    return message.startsWith("This plugin does not support") ||
           message.startsWith("QObject::connect: No such signal QPlatformNativeInterface::");
}

void collect(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && !isOfThePlatform(message))
        warnings.append(message);
}

/// One for all tests of a process: without a display, unless the caller has named a platform.
void startApplication() {
    static int count = 1;
    static char name[] = "flow-tests";
    static char* values[] = {name, nullptr};
    if (QApplication::instance())
        return;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    // Nobody's session bus but the test's own.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    // Left to the end of the process: what else is static may still belong to it.
    static auto* const application = new QApplication(count, values);
    QApplication::setApplicationName("marrowbox");
    QApplication::setApplicationDisplayName("Marrowbox");
    QApplication::setQuitOnLastWindowClosed(false);
    QAccessible::setActive(application != nullptr);
}

fs::path writtenClient(Computer& computer) {
    fs::path file = computer.folder("Installation") / "GoogleOAuth.json";
    std::ofstream(file) << computer.google.identity().client().fileText();
    return file;
}

bool isConsentPage(const std::string& address) {
    return address.starts_with("https://accounts.google.com/");
}

} // namespace

Flow::Flow() {
    startApplication();
    warnings.clear();
    qInstallMessageHandler(collect);
    google.identity().setSignIn({.consent = sandbox::ConsentAnswer::page});
}

Flow::~Flow() {
    endProgram();
    qInstallMessageHandler(nullptr);
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(u'\n').toStdString();
    EXPECT_TRUE(answers_.empty()) << "A dialog was not opened.";
    EXPECT_THAT(google.failures(), testing::IsEmpty());
}

void Flow::startProgram() {
    hasEnded_ = false;
    const auto chooser = [this](std::string message) { return answer(std::move(message)); };
    program_ = std::make_unique<MarrowboxApp>(ProgramSurroundings{
        .sessionBus = computer.sessionBus.connect(),
        .systemBus = computer.systemBus.connect(),
        .process = computer.session(),
        .web = {.certificateFile = computer.authority(), .proxy = google.proxyURL()},
        .chooseJSONFile = chooser,
        .chooseFolder = chooser,
        .bundledClient = bringsClient ? std::optional(writtenClient(computer)) : std::nullopt,
        .clock = [this, machine = systemClock()] { return machine() + hoursAhead * hour; },
        .end = [this] { hasEnded_ = true; }});
    user.sitDownAt(window());
    program_->showWindow({});
    EXPECT_TRUE(user.comesTo([this] { return window().isActive(); }));
}

void Flow::endProgram() {
    program_.reset();
}

asio::awaitable<std::optional<fs::path>> Flow::answer(std::string message) {
    asked_.push_back(std::move(message));
    const auto executor = co_await asio::this_coro::executor;
    co_await asio::post(executor, asio::use_awaitable); // a dialog answers later
    if (answers_.empty()) {
        ADD_FAILURE() << "Nobody expected the dialog “" << asked_.back() << "”.";
        co_return std::nullopt;
    }
    std::optional<fs::path> given = std::move(answers_.front());
    answers_.pop_front();
    co_return given;
}

QString Flow::answerGoogle(const QString& answer) {
    std::vector<std::string> pages;
    const auto arePagesOpened = [&] {
        pages = computer.opened();
        std::erase_if(pages, std::not_fn(isConsentPage));
        return pages.size() > answeredPages_;
    };
    if (!user.comesTo(arePagesOpened)) {
        ADD_FAILURE() << "Google was not asked.";
        return {};
    }
    answeredPages_ = pages.size();
    const auto isLoaded = [this] { return !browser_.isLoading(); };
    browser_.open(pages.back());
    EXPECT_TRUE(user.comesTo(isLoaded));
    browser_.follow(answer);
    EXPECT_TRUE(user.comesTo(isLoaded));
    return browser_.page();
}

void Flow::allow() {
    EXPECT_THAT(answerGoogle("Allow").toStdString(), testing::HasSubstr("You can return to Marrowbox."));
}

AppConfiguration Flow::configuration() const {
    return JSONFile::read<AppConfiguration>(computer.dataFolder() / "Configuration.json");
}

bool Flow::comesToBeWritten(const std::function<bool(const AppConfiguration&)>& holds) {
    return user.comesTo([&] { return holds(configuration()); });
}

bool Flow::comesToEnd(RunOutcome outcome) {
    return user.comesTo([&] {
        const AppConfiguration written = configuration();
        return !written.runs.empty() && written.runs.front().outcome == outcome &&
               !user.shows("Cancel snapshot");
    });
}

void Flow::pick(const QString& picker, const QString& choice) {
    user.click(picker);
    user.click(choice);
}

void Flow::fill(const QString& field, const QString& text) {
    user.click(field);
    user.press(Qt::Key_A, Qt::ControlModifier);
    user.type(text);
}

void Flow::connectAccount() {
    user.click("Connect Google account");
    allow();
    EXPECT_TRUE(user.comesToShow("You are connected!"));
}

void Flow::makeBackup(const QString& folder) {
    user.press(Qt::Key_N, Qt::ControlModifier);
    user.click("My Drive");
    user.click(folder);
    user.click("Use this folder");
    choose(disk);
    user.click("Choose folder…");
    EXPECT_TRUE(user.comesToShow("Backup name"));
    user.click("Create backup");
    EXPECT_TRUE(user.ceasesToShow("A new backup"));
    EXPECT_TRUE(comesToEnd(RunOutcome::succeeded));
    EXPECT_TRUE(user.comesToShow("Your files are in a safe place."));
}

} // namespace marrowbox::test
