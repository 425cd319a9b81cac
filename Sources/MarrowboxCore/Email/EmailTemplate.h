#pragma once

#include <optional>
#include <string>
#include <vector>

namespace marrowbox {

/// A line of the table in a mail.
struct EmailRow {
    std::string label;
    std::string value;
};

/// What a mail says, apart from how it looks. All texts are plain; the HTML escapes them.
struct EmailTemplate {
    std::string eyebrow; ///< The small line above the title.
    std::string title;
    std::string intro; ///< In the HTML alone.
    std::vector<EmailRow> rows;
    std::optional<std::string> detail; ///< Highlighted below the table; lines end in a line feed.
    bool success = false;

    std::string text() const;
    std::string html() const;
};

} // namespace marrowbox
