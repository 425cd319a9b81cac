#include "Email/EmailMessage.h"
#include "Models/BackupError.h"
#include "Platform/Base64.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace marrowbox {

namespace {

/// Right of the @ in a Message-ID. A reserved name that never becomes a host.
constexpr std::string_view localDomain = "marrowbox.invalid";

std::string base64Lines(std::string_view bytes) {
    constexpr std::size_t lineLength = 76;
    const std::string encoded = base64Encoded(bytes);
    std::string lines;
    for (std::size_t start = 0; start < encoded.size(); start += lineLength) {
        if (start > 0)
            lines += '\n';
        lines.append(encoded, start, lineLength);
    }
    return lines;
}

std::string headers(const std::string& from, const std::string& to, const std::string& subject,
                    const Uuid& runID) {
    return "From: Marrowbox <" + from + ">\nTo: " + to + "\nSubject: =?UTF-8?B?" + base64Encoded(subject) +
           "?=\nMessage-ID: <" + boost::algorithm::to_lower_copy(runID.text()) + "@" +
           std::string(localDomain) + ">\nMIME-Version: 1.0\n";
}

std::string part(const std::string& boundary, const std::string& type, std::string_view content) {
    return "--" + boundary + "\nContent-Type: " + type +
           "; charset=UTF-8\nContent-Transfer-Encoding: base64\n\n" + base64Lines(content) + "\n";
}

} // namespace

std::string EmailMessage::mime(const std::string& from, const std::string& to, const Uuid& runID) const {
    if (!validAddress(from) || !validAddress(to))
        throw BackupError("Enter valid sender and recipient email addresses.");
    const std::string boundary = "marrow-" + runID.text();
    // Only addresses, Base64 and our own words are in it, so every line feed is one of ours.
    const std::string message = headers(from, to, subject, runID) +
                                "Content-Type: multipart/alternative; boundary=\"" + boundary + "\"\n\n" +
                                part(boundary, "text/plain", text) + part(boundary, "text/html", html) +
                                "--" + boundary + "--\n";
    return boost::algorithm::replace_all_copy(message, "\n", "\r\n");
}

} // namespace marrowbox
