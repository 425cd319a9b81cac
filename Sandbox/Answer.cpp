#include "Sandbox/Answer.h"

#include <algorithm>
#include <charconv>

namespace marrowbox::sandbox {

namespace {

struct ByteRange {
    std::int64_t first = 0;
    std::int64_t last = 0;
};

std::optional<std::int64_t> decimal(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// The range of "bytes=a-b", "bytes=a-" or "bytes=-n"; absent when it asks for something else.
std::optional<ByteRange> parsedRange(std::string_view header, std::int64_t size) {
    if (!header.starts_with("bytes="))
        return std::nullopt;
    header.remove_prefix(6);
    const std::size_t dash = header.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto first = decimal(header.substr(0, dash));
    const auto last = decimal(header.substr(dash + 1));
    if (first)
        return ByteRange{*first, std::min(last.value_or(size - 1), size - 1)};
    if (!last)
        return std::nullopt;
    return ByteRange{std::max<std::int64_t>(size - *last, 0), size - 1};
}

Answer typed(std::string type, std::string text, unsigned status) {
    Answer answer;
    answer.status = status;
    answer.headers.emplace_back("Content-Type", std::move(type));
    answer.body = std::move(text);
    return answer;
}

} // namespace

Answer Answer::json(std::string text, unsigned status) {
    return typed("application/json; charset=UTF-8", std::move(text), status);
}

Answer Answer::html(std::string text, unsigned status) {
    return typed("text/html; charset=UTF-8", std::move(text), status);
}

Answer Answer::redirect(std::string address) {
    Answer answer = html("", 302);
    answer.headers.emplace_back("Location", std::move(address));
    return answer;
}

Answer Answer::bytes(const Content& content, std::string_view mimeType,
                     const std::optional<std::string>& rangeHeader) {
    Answer answer = typed(std::string(mimeType), "", 200);
    answer.media = ContentRange{content, 0, content.size()};
    if (!rangeHeader)
        return answer;
    const auto range = parsedRange(*rangeHeader, content.size());
    if (!range)
        return answer;
    if (range->first > range->last) {
        Answer refused = googleError(416, "requestedRangeNotSatisfiable", "Request range not satisfiable");
        refused.headers.emplace_back("Content-Range", "bytes */" + std::to_string(content.size()));
        return refused;
    }
    answer.status = 206;
    answer.media = ContentRange{content, range->first, range->last - range->first + 1};
    answer.headers.emplace_back("Content-Range", "bytes " + std::to_string(range->first) + "-" +
                                                     std::to_string(range->last) + "/" +
                                                     std::to_string(content.size()));
    return answer;
}

std::int64_t Answer::bodySize() const {
    return media ? media->length : static_cast<std::int64_t>(body.size());
}

Answer googleError(unsigned status, std::string_view reason, std::string_view message) {
    std::string text = R"({"error":{"code":)" + std::to_string(status) + R"(,"message":)";
    appendJSONText(text, message);
    text += R"(,"errors":[{"domain":"global","reason":)";
    appendJSONText(text, reason);
    text += R"(,"message":)";
    appendJSONText(text, message);
    text += "}]}}";
    return Answer::json(std::move(text), status);
}

std::string_view usualReason(unsigned status) {
    switch (status) {
    case 400:
        return "badRequest";
    case 401:
        return "authError";
    case 403:
        return "forbidden";
    case 404:
        return "notFound";
    case 429:
        return "rateLimitExceeded";
    case 500:
        return "internalError";
    default:
        return "backendError";
    }
}

Answer oauthError(unsigned status, std::string_view error, std::string_view description) {
    std::string text = R"({"error":)";
    appendJSONText(text, error);
    text += R"(,"error_description":)";
    appendJSONText(text, description);
    text += "}";
    return Answer::json(std::move(text), status);
}

std::string_view reasonPhrase(unsigned status) {
    switch (status) {
    case 200:
        return "OK";
    case 206:
        return "Partial Content";
    case 302:
        return "Found";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 416:
        return "Range Not Satisfiable";
    case 429:
        return "Too Many Requests";
    case 500:
        return "Internal Server Error";
    case 503:
        return "Service Unavailable";
    default:
        return "Status";
    }
}

} // namespace marrowbox::sandbox
