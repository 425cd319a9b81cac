#pragma once

#include "GoogleOAuth/HTTPSession.h"

#include <array>
#include <atomic>
#include <curl/curl.h>
#include <exception>
#include <memory>
#include <string_view>

namespace marrowbox {

/// Takes the outcome of a transfer to the coroutine that awaits it.
class HTTPCompletion {
  public:
    virtual ~HTTPCompletion() = default;
    /// Called once, from the network thread.
    virtual void post(std::exception_ptr failure, HTTPResponse response) = 0;
};

/// One request on its way. Belongs to the network thread, the flag apart.
class HTTPTransfer {
  public:
    explicit HTTPTransfer(std::shared_ptr<const HTTPRequest> request) : request_(std::move(request)) {}

    /// Where the outcome goes; set before the transfer is submitted.
    void completeWith(std::unique_ptr<HTTPCompletion> completion) { completion_ = std::move(completion); }
    /// Notes that nobody wants the outcome any more. Any thread.
    void markCancelled() { isCancelled_ = true; }
    bool isCancelled() const { return isCancelled_; }

    /// The handle, ready to be performed. Throws TransportError for a request that cannot be sent.
    CURL* prepare(const HTTPSettings& settings);
    CURL* handle() const { return easy_.get(); }
    /// Whether it does not wait for a turn, or no longer.
    bool mayLeave() const;
    /// Decides the turn of the request, if it has one, by what the performed handle brought.
    void passTurn(CURLcode code);
    /// Reports what the performed handle brought.
    void finish(CURLcode code);
    /// Reports a failure in place of a response.
    void fail(std::exception_ptr failure);

  private:
    struct FreeHandle {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    template <typename Value>
    void set(CURLoption option, Value value);
    void setMethod();
    void setHeaders();
    void setConnection(const HTTPSettings& settings);
    static std::size_t receive(char* bytes, std::size_t one, std::size_t count, void* transfer) noexcept;
    static std::size_t receiveHeader(char* bytes, std::size_t one, std::size_t count,
                                     void* transfer) noexcept;
    bool keep(std::string_view bytes);
    void reserveBody();
    HTTPResponse response();
    std::exception_ptr failure(CURLcode code) const;

    std::shared_ptr<const HTTPRequest> request_;
    std::unique_ptr<HTTPCompletion> completion_;
    std::atomic<bool> isCancelled_ = false;
    std::unique_ptr<curl_slist, FreeList> headers_;
    std::array<char, CURL_ERROR_SIZE> words_{};
    std::unique_ptr<CURL, FreeHandle> easy_;
    std::string body_;
    std::size_t received_ = 0;
    std::size_t headerBytes_ = 0;
    std::size_t largestBody_ = 0;
    bool isTooLarge_ = false;
};

} // namespace marrowbox
