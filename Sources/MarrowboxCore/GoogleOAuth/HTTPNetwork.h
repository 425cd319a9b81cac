#pragma once

#include "GoogleOAuth/HTTPTransfer.h"

#include <curl/curl.h>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace marrowbox {

/// The thread that moves the bytes of all transfers over one pool of connections. Others reach it through an
/// inbox; every outcome is posted from its thread.
class HTTPSession::Network {
  public:
    explicit Network(HTTPSettings settings);
    ~Network();

    void submit(std::shared_ptr<HTTPTransfer> transfer);
    /// Ends a transfer with CancellationError; one that is over stays as it is. Any thread, also before
    /// submit.
    void cancel(std::shared_ptr<HTTPTransfer> transfer);
    /// Ends every transfer as cancelled and the thread with them. What is submitted later ends the same way.
    void stop();

  private:
    struct Inbox {
        std::vector<std::shared_ptr<HTTPTransfer>> submitted;
        std::vector<std::shared_ptr<HTTPTransfer>> cancelled;
        bool isStopping = false;
    };
    struct FreeMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };

    void run();
    Inbox takeInbox();
    void start(const std::shared_ptr<HTTPTransfer>& transfer);
    void move();
    void reportFinished();
    void releaseWaiting();
    void abandon(const std::shared_ptr<HTTPTransfer>& transfer, std::exception_ptr failure);
    void abandonAll(TransportErrorCode code, const char* words);

    HTTPSettings settings_;
    std::unique_ptr<CURLM, FreeMulti> multi_;
    std::unordered_map<CURL*, std::shared_ptr<HTTPTransfer>> active_;
    std::vector<std::shared_ptr<HTTPTransfer>> waiting_; ///< Those of them that wait for their turn.
    std::mutex mutex_;
    Inbox inbox_;
    std::thread thread_;
};

} // namespace marrowbox
