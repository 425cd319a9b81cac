#pragma once

#include "Sandbox/Answer.h"
#include "Sandbox/Drive.h"
#include "Sandbox/RecordedRequest.h"

#include <cstdint>
#include <optional>

namespace marrowbox::sandbox {

/// Answers GET files: one page of the children of a folder.
Answer listingAnswer(const Drive& drive, const RecordedRequest& request);

/// Answers GET drives: one page of the shared drives.
Answer drivesAnswer(const Drive& drive, const RecordedRequest& request);

} // namespace marrowbox::sandbox
