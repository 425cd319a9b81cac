#pragma once

#include "Sandbox/Content.h"
#include "Sandbox/WireText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace marrowbox::sandbox {

/// A part of a content, sent without ever being held whole.
struct ContentRange {
    Content content;
    std::int64_t offset = 0;
    std::int64_t length = 0;
};

/// What a service says to a request.
struct Answer {
    unsigned status = 200;
    NamedValues headers;
    std::string body;
    /// Takes the body's place when present.
    std::optional<ContentRange> media;

    static Answer json(std::string text, unsigned status = 200);
    static Answer html(std::string text, unsigned status = 200);
    static Answer redirect(std::string address);
    /// The bytes of a content, or the one range of them that a Range header asks for.
    static Answer bytes(const Content& content, std::string_view mimeType,
                        const std::optional<std::string>& rangeHeader);

    std::int64_t bodySize() const;
};

/// An error in the form that the Google services share: a code, a message, and one reason.
Answer googleError(unsigned status, std::string_view reason, std::string_view message);

/// The reason that Google gives with a status when it gives no closer one.
std::string_view usualReason(unsigned status);

/// The form of the OAuth endpoints.
Answer oauthError(unsigned status, std::string_view error, std::string_view description);

/// The words behind a status code on the first line.
std::string_view reasonPhrase(unsigned status);

} // namespace marrowbox::sandbox
