#include "Email/EmailMessage.h"
#include "Models/BackupError.h"
#include "ParsedMail.h"
#include "RunBuilder.h"
#include "Support/Thrown.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const Uuid someID = *Uuid::parse("0123ABCD-4567-89EF-0123-456789ABCDEF");
const EmailMessage someMessage{.subject = "Plain · ünï", .text = "Text\n", .html = "<p>HTML</p>"};

std::string mimeOf(const EmailMessage& message) {
    return message.mime("me@example.com", "you+tag@my-domain.example", someID);
}

std::vector<std::string> linesOf(const std::string& message) {
    std::vector<std::string> lines;
    boost::algorithm::split(lines, message, boost::algorithm::is_any_of("\n"));
    return lines;
}

} // namespace

TEST(EmailMIME, isExactlyThis) {
    EXPECT_EQ(
        mimeOf(someMessage),
        "From: Marrowbox <me@example.com>\r\n"
        "To: you+tag@my-domain.example\r\n"
        "Subject: =?UTF-8?B?UGxhaW4gwrcgw7xuw68=?=\r\n"
        "Message-ID: <0123abcd-4567-89ef-0123-456789abcdef@marrowbox.invalid>\r\n"
        "MIME-Version: 1.0\r\n"
        "Content-Type: multipart/alternative; boundary=\"marrow-0123ABCD-4567-89EF-0123-456789ABCDEF\"\r\n"
        "\r\n"
        "--marrow-0123ABCD-4567-89EF-0123-456789ABCDEF\r\n"
        "Content-Type: text/plain; charset=UTF-8\r\n"
        "Content-Transfer-Encoding: base64\r\n"
        "\r\n"
        "VGV4dAo=\r\n"
        "--marrow-0123ABCD-4567-89EF-0123-456789ABCDEF\r\n"
        "Content-Type: text/html; charset=UTF-8\r\n"
        "Content-Transfer-Encoding: base64\r\n"
        "\r\n"
        "PHA+SFRNTDwvcD4=\r\n"
        "--marrow-0123ABCD-4567-89EF-0123-456789ABCDEF--\r\n");
}

TEST(EmailMIME, isReadWithoutADefectByAnotherLibrary) {
    RunRecord run = test::successfulRun();
    run.unitName = "Ådas “Bücher” 日本語 🗄️";
    const EmailMessage message = EmailMessage::of(run, test::britishFormats(), test::morning);
    const test::ParsedMail mail = test::parseMail(mimeOf(message));
    EXPECT_THAT(mail.defects, IsEmpty());
    EXPECT_THAT(mail.headers,
                ElementsAre("From", "To", "Subject", "Message-ID", "MIME-Version", "Content-Type"));
    EXPECT_EQ(mail.fromName, "Marrowbox");
    EXPECT_EQ(mail.fromAddress, "me@example.com");
    EXPECT_THAT(mail.to, ElementsAre("you+tag@my-domain.example"));
    EXPECT_EQ(mail.subject, message.subject);
    EXPECT_EQ(mail.messageID, "<0123abcd-4567-89ef-0123-456789abcdef@marrowbox.invalid>");
    EXPECT_EQ(mail.type, "multipart/alternative");
    EXPECT_EQ(mail.boundary, "marrow-0123ABCD-4567-89EF-0123-456789ABCDEF");
    EXPECT_EQ(mail.preamble + mail.epilogue, "");
}

TEST(EmailMIME, bringsBothAlternativesBackByteForByte) {
    const EmailMessage message = EmailMessage::digest({test::successfulRun(), test::failedRun()},
                                                      "Ådas “Bücher”", test::britishFormats());
    const test::ParsedMail mail = test::parseMail(mimeOf(message));
    ASSERT_THAT(mail.parts, SizeIs(2));
    EXPECT_EQ(mail.parts[0].type, "text/plain");
    EXPECT_EQ(mail.parts[0].content, message.text);
    EXPECT_EQ(mail.parts[1].type, "text/html");
    EXPECT_EQ(mail.parts[1].content, message.html);
    for (const test::ParsedPart& part : mail.parts) {
        EXPECT_EQ(part.charset, "utf-8");
        EXPECT_EQ(part.encoding, "base64");
    }
}

TEST(EmailMIME, endsEveryLineWithCarriageReturnAndLineFeed) {
    const std::string message = mimeOf(EmailMessage{.subject = "S", .text = "a\r\nb\rc\nd", .html = "e\r\n"});
    const std::vector<std::string> lines = linesOf(message);
    ASSERT_GT(lines.size(), 10U);
    for (std::size_t index = 0; index + 1 < lines.size(); ++index) {
        EXPECT_EQ(lines[index].find('\r'), lines[index].size() - 1) << lines[index];
    }
    EXPECT_EQ(lines.back(), "");
    EXPECT_EQ(test::parseMail(message).parts.at(0).content, "a\r\nb\rc\nd");
}

TEST(EmailMIME, wrapsBodiesAtSeventySixCharacters) {
    for (const std::size_t length : {0U, 57U, 58U, 10'000U}) {
        const EmailMessage message{.subject = "S", .text = std::string(length, 'x'), .html = "h"};
        const std::string bytes = mimeOf(message);
        for (const std::string& line : linesOf(bytes))
            if (line.starts_with("eHh4"))
                EXPECT_LE(line.size(), 76U + 1) << length;
        const test::ParsedMail mail = test::parseMail(bytes);
        EXPECT_EQ(mail.parts.at(0).content, message.text) << length;
        EXPECT_THAT(mail.defects, IsEmpty()) << length;
    }
}

TEST(EmailMIME, keepsASubjectOfAnyLengthOnOneLineInEncodedForm) {
    EmailMessage message = someMessage;
    for (int word = 0; word < 500; ++word)
        message.subject += "日本語 ";
    const std::string bytes = mimeOf(message);
    EXPECT_THAT(bytes, Not(HasSubstr("日")));
    const auto begin = bytes.find("\r\nSubject: =?UTF-8?B?");
    ASSERT_NE(begin, std::string::npos);
    const auto end = bytes.find("\r\n", begin + 2);
    EXPECT_EQ(bytes.substr(end - 2), "?=" + bytes.substr(end));
    EXPECT_TRUE(bytes.substr(end).starts_with("\r\nMessage-ID: <"));
    EXPECT_EQ(test::parseMail(bytes).subject, message.subject);
}

TEST(EmailMIME, letsNoNameAddAHeaderOrAPart) {
    RunRecord run = test::failedRun();
    run.unitName = "x\r\nBcc: spy@example.com\r\n\r\n--marrow-0123ABCD-4567-89EF-0123-456789ABCDEF--\r\n";
    run.destination = run.unitName;
    run.detail = run.unitName;
    const EmailMessage message = EmailMessage::of(run, test::britishFormats(), test::morning);
    const std::string bytes = mimeOf(message);
    EXPECT_THAT(bytes, Not(HasSubstr("Bcc")));
    const test::ParsedMail mail = test::parseMail(bytes);
    EXPECT_THAT(mail.headers,
                ElementsAre("From", "To", "Subject", "Message-ID", "MIME-Version", "Content-Type"));
    ASSERT_THAT(mail.parts, SizeIs(2));
    EXPECT_EQ(mail.parts[0].content, message.text);
    EXPECT_EQ(mail.parts[1].content, message.html);
}

TEST(EmailMIME, refusesAnAddressThatIsNone) {
    const auto refusal = [](const std::string& from, const std::string& to) {
        return test::thrown<BackupError>([&] { (void)someMessage.mime(from, to, someID); });
    };
    for (const char* bad : {"", "you", "you@localhost", "you@-x.com", "y ou@x.com",
                            "you@x.com\r\nBcc: a@b.de", "you@x.com\n"}) {
        EXPECT_EQ(refusal("me@example.com", bad), "Enter valid sender and recipient email addresses.") << bad;
        EXPECT_EQ(refusal(bad, "you@example.com"), "Enter valid sender and recipient email addresses.")
            << bad;
    }
}

TEST(EmailMessage, escapesTheFiveCharactersOfHTMLOnce) {
    EXPECT_EQ(EmailMessage::escape("&<>\"'"), "&amp;&lt;&gt;&quot;&#39;");
    EXPECT_EQ(EmailMessage::escape("&lt; é"), "&amp;lt; é");
    EXPECT_EQ(EmailMessage::escape(""), "");
}

} // namespace marrowbox
