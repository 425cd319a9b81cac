#include "Email/EmailTemplate.h"

#include "Email/EmailMessage.h"
#include "Platform/Wording.h"

namespace marrowbox {

namespace {

// Mail programs know little of HTML: tables for layout, every style beside its element.
constexpr std::string_view frameBegin =
    R"(<!doctype html><html><head><meta charset="utf-8"><meta name="viewport" content="width=device-width,initial-scale=1"></head>
<body style="margin:0;background:#f3f4ef;font-family:-apple-system,BlinkMacSystemFont,'Segoe UI',Arial,sans-serif;color:#292f28">
<table role="presentation" width="100%" cellpadding="0" cellspacing="0"><tr><td align="center" style="padding:48px 20px">
<table role="presentation" width="560" cellpadding="0" cellspacing="0" style="width:100%;max-width:560px"><tr><td style="padding:0 8px 24px;font-size:13px;letter-spacing:2px;color:#65775d">MARROWBOX</td></tr>
<tr><td style="background:#ffffff;border:1px solid #e3e7dc;border-radius:20px;padding:36px">
)";
constexpr std::string_view titleBegin =
    R"(<h1 style="margin:16px 0 12px;font-size:30px;line-height:1.2;letter-spacing:-1px;font-weight:500">)";
constexpr std::string_view introBegin =
    R"(<p style="margin:0 0 28px;font-size:15px;line-height:1.7;color:#73786f">)";
constexpr std::string_view rowsBegin =
    R"(<table role="presentation" width="100%" cellpadding="0" cellspacing="0" style="border-top:1px solid #e8ebe3">)";
constexpr std::string_view labelBegin =
    R"(<tr><td style="padding:10px 0;color:#73786f;font-size:13px;vertical-align:top;width:44%">)";
constexpr std::string_view valueBegin =
    R"(</td><td style="padding:10px 0;color:#292f28;font-size:13px;text-align:right;word-break:break-word">)";
constexpr std::string_view detailBegin =
    R"(<div style="margin-top:24px;padding:18px;background:#f4eee4;border-radius:12px;font-size:14px;line-height:1.6;color:#5c4e37">)";
constexpr std::string_view footerBegin = R"(
</td></tr><tr><td style="padding:24px 8px;font-size:12px;color:#8c9386">)";
constexpr std::string_view frameEnd = R"(</td></tr></table>
</td></tr></table></body></html>)";

/// Something that went well is green, and what needs a person is brown.
constexpr std::string_view accent(bool success) {
    return success ? "#59754e" : "#9d6134";
}

void appendElement(std::string& html, std::string_view begin, const std::string& text, std::string_view end) {
    html += begin;
    html += EmailMessage::escape(text);
    html += end;
}

/// A text of several lines.
std::string escapedLines(const std::string& text) {
    std::string html;
    for (const char byte : EmailMessage::escape(text))
        if (byte == '\n')
            html += "<br>";
        else
            html += byte;
    return html;
}

std::string eyebrowBegin(bool success) {
    std::string begin = R"(<div style="font-size:12px;color:)";
    begin += accent(success);
    begin += R"(;letter-spacing:1px">)";
    return begin;
}

} // namespace

std::string EmailTemplate::text() const {
    std::string plain = title + "\n\n";
    for (std::size_t index = 0; index < rows.size(); ++index) {
        if (index > 0)
            plain += '\n';
        plain += rows[index].label + ": " + rows[index].value;
    }
    if (detail)
        plain += "\n\n" + *detail;
    return plain + "\n\nMarrowbox • A little peace of mind.\n";
}

std::string EmailTemplate::html() const {
    std::string html(frameBegin);
    appendElement(html, eyebrowBegin(success), eyebrow, "</div>\n");
    appendElement(html, titleBegin, title, "</h1>\n");
    appendElement(html, introBegin, intro, "</p>\n");
    html += rowsBegin;
    for (const EmailRow& row : rows) {
        appendElement(html, labelBegin, row.label, "");
        appendElement(html, valueBegin, row.value, "</td></tr>");
    }
    html += "</table>";
    if (detail) {
        html += detailBegin;
        html += escapedLines(*detail);
        html += "</div>";
    }
    html += footerBegin;
    html += worded("A little peace of mind. Sent by Marrowbox on your Mac.");
    html += frameEnd;
    return html;
}

} // namespace marrowbox
