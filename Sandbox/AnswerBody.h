#pragma once

#include "Sandbox/Answer.h"
#include "Sandbox/Fault.h"

#include <cstdint>
#include <optional>
#include <string>

namespace marrowbox::sandbox {

/// Puts the faults of a request into its answer.
void applyEffects(const FaultEffects& effects, Answer& answer);

/// The first lines of an answer up to the blank one. Without a length the body is announced in chunks.
std::string answerHead(const Answer& answer, std::optional<std::int64_t> length, bool isKeptAlive);

/// A part of the body's bytes.
std::string bodyPart(const Answer& answer, std::int64_t offset, std::int64_t count);

} // namespace marrowbox::sandbox
