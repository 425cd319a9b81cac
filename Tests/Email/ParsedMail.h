#pragma once

#include <boost/describe/class.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace marrowbox::test {

/// One alternative of a mail, decoded.
struct ParsedPart {
    std::string type;
    std::string charset;
    std::string encoding;
    std::string content;
};
BOOST_DESCRIBE_STRUCT(ParsedPart, (), (type, charset, encoding, content))

/// A mail as a MIME library reads it that shares nothing with this program: Python's.
struct ParsedMail {
    std::vector<std::string> headers; ///< Their names in order.
    std::string fromName;
    std::string fromAddress;
    std::vector<std::string> to;
    std::string subject;
    std::string messageID;
    std::string type;
    std::string boundary;
    std::vector<ParsedPart> parts;
    std::string preamble;
    std::string epilogue;
    std::vector<std::string> defects; ///< Whatever breaks a rule of mail.
};
BOOST_DESCRIBE_STRUCT(ParsedMail, (),
                      (headers, fromName, fromAddress, to, subject, messageID, type, boundary, parts,
                       preamble, epilogue, defects))

ParsedMail parseMail(std::string_view message);

} // namespace marrowbox::test
