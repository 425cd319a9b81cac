#pragma once

#include "Sandbox/Answer.h"
#include "Sandbox/Drive.h"
#include "Sandbox/Identity.h"
#include "Sandbox/RecordedRequest.h"

namespace marrowbox::sandbox {

/// Answers the Drive REST API, version 3, below /drive/v3/, for one account that was proved to ask.
Answer driveAnswer(Drive& drive, const Identity::Bearer& asking, const RecordedRequest& request);

/// Answers an export link on docs.google.com.
Answer exportLinkAnswer(Drive& drive, const RecordedRequest& request);

} // namespace marrowbox::sandbox
