#pragma once

#include "Models/RunRecord.h"
#include "Platform/Formats.h"

#include <string>

namespace marrowbox {

/// The line about its email that stands beside a run.
struct RunEmailStatus {
    enum class Tone { sent, pending, problem, off };

    std::string text;      ///< The full sentence.
    std::string shortText; ///< For tight places.
    Tone tone = Tone::pending;

    /// What a record says about its email. The time of sending is written as the user's locale does.
    static RunEmailStatus of(const RunRecord& run, const Formats& formats);

    friend bool operator==(const RunEmailStatus&, const RunEmailStatus&) = default;
};

} // namespace marrowbox
