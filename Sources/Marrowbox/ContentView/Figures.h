#pragma once

#include "Models/RunSummary.h"
#include "Platform/Formats.h"

#include <QString>
#include <cstdint>

namespace marrowbox {

/// A size as file browsers show it, and "0 B" for nothing.
QString sizeText(std::int64_t bytes, const Formats& formats);

/// A count with the locale's separators.
QString countText(std::int64_t count);

/// "3 new · 1 updated · 40 unchanged".
QString summaryText(const RunSummary& summary);

} // namespace marrowbox
