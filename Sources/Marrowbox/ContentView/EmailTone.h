#pragma once

#include "Models/RunEmailStatus.h"

#include <QString>

namespace marrowbox {

/// How screens name a tone: "sent", "pending", "problem" or "off".
QString toneName(RunEmailStatus::Tone tone);

/// The envelope that stands for a tone.
QString toneIcon(RunEmailStatus::Tone tone);

} // namespace marrowbox
