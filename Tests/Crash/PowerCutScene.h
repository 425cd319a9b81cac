#pragma once

#include "Platform/Files.h"
#include "Support/StorageRecording.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace marrowbox::test {

/// A job of the program, which may be killed on its way.
struct PowerCutStep {
    std::string job; ///< As the program knows it.
    /// The call before which it is killed; asked about each call of the step once.
    std::function<bool(const FileCall&)> dies = {};
};

/// Jobs one after the other, of which any may be the last before the power is cut.
struct PowerCutScene {
    std::string name;
    std::function<void(const fs::path& destination)> prepare;
    std::vector<PowerCutStep> steps;
    /// Expects that what a cut left serves its next user, after so many jobs have ended.
    std::function<void(const fs::path& destination, int jobsEnded)> expectWhole;
    PowerCutMoments moments = {};

    friend std::ostream& operator<<(std::ostream& stream, const PowerCutScene& it) {
        return stream << it.name;
    }
};

const std::vector<PowerCutScene>& powerCutScenes();

} // namespace marrowbox::test
