#include "Client.h"

#include <curl/curl.h>

namespace marrowbox::test {

namespace {

std::size_t append(char* data, std::size_t size, std::size_t count, void* to) {
    static_cast<std::string*>(to)->append(data, size * count);
    return size * count;
}

} // namespace

Client::Client(sandbox::SandboxServer& sandbox) : Client(sandbox, sandbox) {
}

Client::Client(sandbox::SandboxServer& reached, sandbox::SandboxServer& trusted)
    : proxy_(reached.proxyURL()), authority_(trusted.authorityPEM()),
      handle_(curl_easy_init(), curl_easy_cleanup) {
}

Reply Client::get(const std::string& address, const std::vector<std::string>& headers) {
    return perform(address, nullptr, headers);
}

Reply Client::post(const std::string& address, const std::string& body,
                   const std::vector<std::string>& headers) {
    return perform(address, &body, headers);
}

Reply Client::perform(const std::string& address, const std::string* body,
                      const std::vector<std::string>& headers) {
    CURL* handle = handle_.get();
    curl_easy_reset(handle); // keeps its connections
    Reply reply;
    curl_slist* lines =
        token_.empty() ? nullptr : curl_slist_append(nullptr, ("Authorization: Bearer " + token_).c_str());
    for (const std::string& header : headers)
        lines = curl_slist_append(lines, header.c_str());
    curl_blob authority{authority_.data(), authority_.size(), CURL_BLOB_COPY};
    curl_easy_setopt(handle, CURLOPT_URL, address.c_str());
    curl_easy_setopt(handle, CURLOPT_PROXY, proxy_.c_str());
    curl_easy_setopt(handle, CURLOPT_CAINFO_BLOB, &authority);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, lines);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, limit_);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &reply.body);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &reply.head);
    if (body != nullptr) {
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body->data());
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
    }
    reply.failure = curl_easy_perform(handle);
    if (reply.failure == CURLE_OK)
        curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &reply.status);
    curl_slist_free_all(lines);
    return reply;
}

} // namespace marrowbox::test
