#include "Marrowbox/MarrowboxApp/FileChoosers.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QWindow>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <memory>

namespace marrowbox::FileChoosers {

namespace {

/// The window that a dialog belongs to, if one is open.
QWindow* programWindow() {
    for (QWindow* const window : QGuiApplication::topLevelWindows())
        if (window->isVisible() && window->title() == "Marrowbox")
            return window;
    return nullptr;
}

asio::awaitable<std::optional<fs::path>> answer(std::unique_ptr<QFileDialog> dialog) {
    // The timer stands for the user, who may take any time; the end of the dialog cancels it.
    auto user = std::make_shared<asio::steady_timer>(co_await asio::this_coro::executor,
                                                     asio::steady_timer::time_point::max());
    QObject::connect(dialog.get(), &QDialog::finished, [user](int) { user->cancel(); });
    dialog->setWindowModality(Qt::WindowModal);
    dialog->winId();
    if (QWindow* const above = programWindow(); above && dialog->windowHandle())
        dialog->windowHandle()->setTransientParent(above);
    dialog->open();
    boost::system::error_code ended;
    co_await user->async_wait(asio::redirect_error(asio::use_awaitable, ended));
    if (dialog->result() != QDialog::Accepted || dialog->selectedFiles().isEmpty())
        co_return std::nullopt;
    co_return fs::path(dialog->selectedFiles().front().toStdString());
}

std::unique_ptr<QFileDialog> dialogSaying(const std::string& message) {
    auto dialog = std::make_unique<QFileDialog>();
    dialog->setWindowTitle(QString::fromStdString(message));
    return dialog;
}

} // namespace

asio::awaitable<std::optional<fs::path>> chooseJSONFile(std::string message) {
    auto dialog = dialogSaying(message);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilter(QCoreApplication::translate("FileChoosers", "JSON files (*.json)"));
    const auto chosen = co_await answer(std::move(dialog));
    co_return chosen;
}

asio::awaitable<std::optional<fs::path>> chooseFolder(std::string message) {
    auto dialog = dialogSaying(message);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    const auto chosen = co_await answer(std::move(dialog));
    co_return chosen;
}

} // namespace marrowbox::FileChoosers
