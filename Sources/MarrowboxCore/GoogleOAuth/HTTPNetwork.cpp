#include "GoogleOAuth/HTTPNetwork.h"

#include "Platform/Cancellation.h"

#include <csignal>
#include <limits>
#include <stdexcept>
#include <utility>

namespace marrowbox {

namespace {

constexpr const char* sessionEnded = "The session ended before the response was complete.";

std::exception_ptr transportFailure(TransportErrorCode code, const char* words) {
    return std::make_exception_ptr(TransportError(code, words));
}

// Signals are for the threads that expect them; this one would only lose a broken pipe to the program.
std::thread startWithoutSignals(auto work) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(std::move(work));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

} // namespace

HTTPSession::Network::Network(HTTPSettings settings) : settings_(std::move(settings)) {
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        throw std::runtime_error("The HTTP library could not be started.");
    multi_.reset(curl_multi_init());
    if (!multi_) {
        curl_global_cleanup();
        throw std::runtime_error("The HTTP library could not be started.");
    }
    thread_ = startWithoutSignals([this] { run(); });
}

HTTPSession::Network::~Network() {
    stop();
    multi_.reset();
    curl_global_cleanup();
}

void HTTPSession::Network::submit(std::shared_ptr<HTTPTransfer> transfer) {
    {
        const std::lock_guard lock(mutex_);
        if (!inbox_.isStopping) {
            inbox_.submitted.push_back(std::move(transfer));
            curl_multi_wakeup(multi_.get());
            return;
        }
    }
    transfer->fail(transportFailure(TransportErrorCode::cancelled, sessionEnded));
}

void HTTPSession::Network::cancel(std::shared_ptr<HTTPTransfer> transfer) {
    transfer->markCancelled();
    const std::lock_guard lock(mutex_);
    inbox_.cancelled.push_back(std::move(transfer));
    curl_multi_wakeup(multi_.get());
}

void HTTPSession::Network::stop() {
    {
        const std::lock_guard lock(mutex_);
        inbox_.isStopping = true;
        curl_multi_wakeup(multi_.get());
    }
    if (thread_.joinable())
        thread_.join();
}

HTTPSession::Network::Inbox HTTPSession::Network::takeInbox() {
    const std::lock_guard lock(mutex_);
    Inbox taken{.isStopping = inbox_.isStopping};
    taken.submitted.swap(inbox_.submitted);
    taken.cancelled.swap(inbox_.cancelled);
    return taken;
}

void HTTPSession::Network::run() {
    for (;;) {
        const Inbox inbox = takeInbox();
        for (const auto& transfer : inbox.submitted)
            start(transfer);
        for (const auto& transfer : inbox.cancelled)
            abandon(transfer, std::make_exception_ptr(CancellationError()));
        if (inbox.isStopping)
            return abandonAll(TransportErrorCode::cancelled, sessionEnded);
        move();
    }
}

void HTTPSession::Network::start(const std::shared_ptr<HTTPTransfer>& transfer) {
    if (transfer->isCancelled())
        return transfer->fail(std::make_exception_ptr(CancellationError()));
    // Let go of before it is reported: the failure then belongs to the coroutine's thread alone.
    std::exception_ptr failure;
    try {
        CURL* handle = transfer->prepare(settings_);
        active_.emplace(handle, transfer);
        if (transfer->mayLeave())
            curl_multi_add_handle(multi_.get(), handle);
        else
            waiting_.push_back(transfer);
    } catch (...) {
        failure = std::current_exception();
    }
    if (!failure)
        return;
    active_.erase(transfer->handle());
    transfer->fail(std::move(failure));
}

void HTTPSession::Network::move() {
    int running = 0;
    CURLMcode code = curl_multi_perform(multi_.get(), &running);
    reportFinished();
    // Sleeps until a socket moves, one of the library's own times comes, or the inbox has something.
    if (code == CURLM_OK)
        code = curl_multi_poll(multi_.get(), nullptr, 0, std::numeric_limits<int>::max(), nullptr);
    if (code != CURLM_OK)
        abandonAll(TransportErrorCode::other, curl_multi_strerror(code));
}

void HTTPSession::Network::reportFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode code = message->data.result;
        const auto node = active_.extract(message->easy_handle);
        // The connection goes back to the pool before anybody can ask for it again.
        curl_multi_remove_handle(multi_.get(), node.key());
        node.mapped()->passTurn(code);
        releaseWaiting();
        node.mapped()->finish(code);
    }
}

void HTTPSession::Network::releaseWaiting() {
    std::erase_if(waiting_, [this](const auto& transfer) {
        if (!transfer->mayLeave() || transfer->isCancelled())
            return false;
        curl_multi_add_handle(multi_.get(), transfer->handle());
        return true;
    });
}

void HTTPSession::Network::abandon(const std::shared_ptr<HTTPTransfer>& transfer,
                                   std::exception_ptr failure) {
    const auto found = active_.find(transfer->handle());
    if (found == active_.end() || found->second != transfer)
        return;
    const auto node = active_.extract(found);
    std::erase(waiting_, transfer);
    curl_multi_remove_handle(multi_.get(), node.key());
    transfer->fail(std::move(failure));
}

void HTTPSession::Network::abandonAll(TransportErrorCode code, const char* words) {
    while (!active_.empty()) {
        const auto transfer = active_.begin()->second;
        abandon(transfer, transportFailure(code, words));
    }
}

} // namespace marrowbox
