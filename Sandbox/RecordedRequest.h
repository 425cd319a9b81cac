#pragma once

#include "Sandbox/WireText.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace marrowbox::sandbox {

/// A request as it came, and what it was answered.
struct RecordedRequest {
    std::string method;
    /// The host that the client asked the proxy for.
    std::string host;
    /// Path and query as they came, still encoded.
    std::string target;
    /// The decoded path.
    std::string path;
    /// The decoded query items in their order.
    NamedValues query;
    NamedValues headers;
    std::string body;
    /// Which connection of this sandbox it came on, counted from 1.
    std::int64_t connection = 0;
    /// 0 until it is answered, and for good when the connection was cut instead.
    unsigned status = 0;

    std::optional<std::string> queryItem(std::string_view name) const { return firstValue(query, name); }
    std::optional<std::string> header(std::string_view name) const { return firstHeader(headers, name); }
    /// The body's items when it is a form.
    NamedValues form() const { return queryItems(body); }
};

} // namespace marrowbox::sandbox
