#pragma once

#include "Models/RunRecord.h"
#include "Models/Uuid.h"
#include "Platform/Formats.h"

#include <string>
#include <string_view>
#include <vector>

namespace marrowbox {

/// A finished mail about runs. Dates and sizes in it are written as the given formats do.
struct EmailMessage {
    std::string subject; ///< Not yet encoded.
    std::string text;    ///< The plain alternative.
    std::string html;    ///< The HTML alternative.

    /// The mail about one run. A run that has not ended is taken to have lasted until now.
    static EmailMessage of(const RunRecord& run, const Formats& formats, Date now);
    /// One mail about several runs of a unit, in any order.
    static EmailMessage digest(std::vector<RunRecord> runs, const std::string& unitName,
                               const Formats& formats);

    /// A text as HTML shows it.
    static std::string escape(std::string_view text);
    /// Whether the whole text is an address, as isEmailAddress says.
    static bool validAddress(std::string_view text);

    /// The bytes of the message. Throws BackupError when an address is not valid.
    std::string mime(const std::string& from, const std::string& to, const Uuid& runID) const;

    friend bool operator==(const EmailMessage&, const EmailMessage&) = default;
};

} // namespace marrowbox
