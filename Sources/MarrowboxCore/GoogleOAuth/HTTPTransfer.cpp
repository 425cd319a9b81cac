#include "GoogleOAuth/HTTPTransfer.h"

#include "Models/BackupError.h"

#include <algorithm>

namespace marrowbox {

namespace {

// Large enough that a page of a listing arrives in one or two pieces.
constexpr long receiveBuffer = 256L << 10;
// All header lines of an answer, those of interim answers and behind the body included.
constexpr std::size_t largestHeaders = 256U << 10;
// What was made ready for a request may be too old after a longer time than this.
constexpr curl_off_t longestTurn = 30'000'000; // microseconds

bool isSuccess(long status) {
    return status >= 200 && status <= 299;
}

bool isSafeInHeader(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

bool isSameHeaderName(std::string_view left, std::string_view right) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? letter + ('a' - 'A') : letter;
    };
    return std::ranges::equal(left, right, {}, lower, lower);
}

long statusOf(CURL* easy) {
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    return status;
}

TransportErrorCode errorCode(CURLcode code) {
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return TransportErrorCode::timedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return TransportErrorCode::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
        return TransportErrorCode::cannotConnect;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
        return TransportErrorCode::secureConnectionFailed;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return TransportErrorCode::connectionLost;
    default:
        return TransportErrorCode::other;
    }
}

} // namespace

template <typename Value>
void HTTPTransfer::set(CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(easy_.get(), option, value);
    if (code != CURLE_OK)
        throw TransportError(TransportErrorCode::other, curl_easy_strerror(code));
}

CURL* HTTPTransfer::prepare(const HTTPSettings& settings) {
    easy_.reset(curl_easy_init());
    if (!easy_)
        throw TransportError(TransportErrorCode::other, curl_easy_strerror(CURLE_FAILED_INIT));
    set(CURLOPT_ERRORBUFFER, words_.data());
    set(CURLOPT_URL, request_->url.c_str());
    set(CURLOPT_WRITEFUNCTION, &HTTPTransfer::receive);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_HEADERFUNCTION, &HTTPTransfer::receiveHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_BUFFERSIZE, receiveBuffer);
    largestBody_ = settings.largestBody;
    setConnection(settings);
    setMethod();
    setHeaders();
    return easy_.get();
}

void HTTPTransfer::setConnection(const HTTPSettings& settings) {
    set(CURLOPT_PROTOCOLS_STR, settings.allowsPlainHTTP ? "http,https" : "https");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    // A cancelled look-up of a name must not hold up the other transfers.
    set(CURLOPT_QUICK_EXIT, 1L);
    if (settings.certificateFile)
        set(CURLOPT_CAINFO, settings.certificateFile->c_str());
    if (settings.proxy)
        set(CURLOPT_PROXY, settings.proxy->c_str());
    // A transfer that moves may take as long as it needs.
    const long seconds = static_cast<long>(request_->timeout.count());
    set(CURLOPT_CONNECTTIMEOUT, seconds);
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, seconds);
}

void HTTPTransfer::setMethod() {
    const std::string& method = request_->method;
    // The library repeats by itself what it sent on a kept connection that turned out to be closed. A request
    // that must not be repeated therefore gets a new one.
    if (method != "GET")
        set(CURLOPT_FRESH_CONNECT, 1L);
    else
        set(CURLOPT_PIPEWAIT, 1L);
    if (method == "POST" || !request_->body.empty()) {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_->body.size()));
        set(CURLOPT_POSTFIELDS, request_->body.c_str());
        if (method != "POST")
            set(CURLOPT_CUSTOMREQUEST, method.empty() ? "GET" : method.c_str());
        return;
    }
    if (method == "HEAD")
        set(CURLOPT_NOBODY, 1L);
    else if (method != "GET" && !method.empty())
        set(CURLOPT_CUSTOMREQUEST, method.c_str());
}

void HTTPTransfer::setHeaders() {
    const auto add = [this](const std::string& line) {
        curl_slist* longer = curl_slist_append(headers_.get(), line.c_str());
        if (longer == nullptr)
            throw std::bad_alloc();
        (void)headers_.release();
        headers_.reset(longer);
    };
    bool hasContentType = false;
    for (const auto& [name, value] : request_->headers) {
        if (!isSafeInHeader(name) || !isSafeInHeader(value))
            throw TransportError(TransportErrorCode::other, "A request header holds a line break.");
        hasContentType = hasContentType || isSameHeaderName(name, "Content-Type");
        add(value.empty() ? name + ";" : name + ": " + value);
    }
    // What the library would add by itself.
    add("Expect:");
    if (!hasContentType)
        add("Content-Type:");
    set(CURLOPT_HTTPHEADER, headers_.get());
}

std::size_t HTTPTransfer::receive(char* bytes, std::size_t, std::size_t count, void* transfer) noexcept {
    try {
        return static_cast<HTTPTransfer*>(transfer)->keep({bytes, count}) ? count : 0;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

std::size_t HTTPTransfer::receiveHeader(char*, std::size_t, std::size_t count, void* transfer) noexcept {
    auto& self = *static_cast<HTTPTransfer*>(transfer);
    self.headerBytes_ += count;
    self.isTooLarge_ = self.isTooLarge_ || self.headerBytes_ > largestHeaders;
    return self.isTooLarge_ ? 0 : count;
}

bool HTTPTransfer::keep(std::string_view bytes) {
    if (bytes.size() > largestBody_ - received_) {
        isTooLarge_ = true;
        return false;
    }
    const bool isFirst = received_ == 0;
    received_ += bytes.size();
    if (!isSuccess(statusOf(easy_.get())))
        return true;
    if (isFirst)
        reserveBody();
    body_ += bytes;
    return true;
}

void HTTPTransfer::reserveBody() {
    curl_off_t length = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    if (length > 0)
        body_.reserve(std::min(static_cast<std::size_t>(length), largestBody_));
}

HTTPResponse HTTPTransfer::response() {
    HTTPResponse response;
    response.status = static_cast<int>(statusOf(easy_.get()));
    curl_header* retryAfter = nullptr;
    if (curl_easy_header(easy_.get(), "Retry-After", 0, CURLH_HEADER, -1, &retryAfter) == CURLHE_OK)
        response.retryAfter = retryAfter->value;
    response.body = std::move(body_);
    return response;
}

std::exception_ptr HTTPTransfer::failure(CURLcode code) const {
    if (isTooLarge_)
        return std::make_exception_ptr(BackupError("The server returned a response that is too large."));
    const char* words = words_.front() != '\0' ? words_.data() : curl_easy_strerror(code);
    return std::make_exception_ptr(TransportError(errorCode(code), words));
}

bool HTTPTransfer::mayLeave() const {
    const auto& after = request_->order.after;
    return !after || after->hasPassed();
}

void HTTPTransfer::passTurn(CURLcode code) {
    const auto& turn = request_->order.turn;
    if (!turn)
        return;
    curl_off_t duration = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_TOTAL_TIME_T, &duration);
    const std::string_view body = body_;
    const bool isAnswer = code == CURLE_OK && isSuccess(statusOf(easy_.get())) && duration <= longestTurn;
    turn->decide(isAnswer ? &body : nullptr);
}

void HTTPTransfer::finish(CURLcode code) {
    if (code == CURLE_OK)
        return completion_->post(nullptr, response());
    long sent = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_REQUEST_SIZE, &sent);
    // The library's word for an answer that does not begin as HTTP does.
    if (code == CURLE_UNSUPPORTED_PROTOCOL && sent > 0)
        return completion_->post(nullptr, HTTPResponse());
    completion_->post(failure(code), HTTPResponse());
}

void HTTPTransfer::fail(std::exception_ptr failure) {
    completion_->post(std::move(failure), HTTPResponse());
}

} // namespace marrowbox
