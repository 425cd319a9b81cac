#pragma once

#include <gtest/gtest.h>
#include <string>

namespace marrowbox::test {

/// The words of the failure of this type that the work throws; a test failure when it throws none.
template <typename Error, typename Work>
std::string thrown(Work work) {
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

} // namespace marrowbox::test
