#pragma once

#include "DisturbedRun.h"

#include <gtest/gtest.h>
#include <iostream>

namespace marrowbox::test {

/// A test of disturbed runs, skipped where the system does not let a process watch another.
class DisturbedRunTest : public testing::TestWithParam<Scene> {
  protected:
    void SetUp() override {
        if (const auto reason = reasonForNoWatching())
            GTEST_SKIP() << *reason;
    }

    /// Tells how much was tried, on the terminal and in the test's record.
    static void report(const std::string& what, int tried, int calls) {
        RecordProperty("tried", tried);
        RecordProperty("calls", calls);
        std::cout << GetParam().name << ": " << tried << " " << what << ", of " << calls << " calls\n";
    }
};

inline std::string sceneName(const testing::TestParamInfo<Scene>& info) {
    return info.param.name;
}

inline bool everyCall(const FileCall&) {
    return true;
}

} // namespace marrowbox::test
