#include "Platform/RandomBytes.h"

#include <gtest/gtest.h>

namespace marrowbox {

TEST(RandomBytes, areAsManyAsAskedFor) {
    for (const std::size_t count : std::initializer_list<std::size_t>{0, 1, 32, 100'000})
        EXPECT_EQ(randomBytes(count).value().size(), count);
}

TEST(RandomBytes, areFreshEachTime) {
    EXPECT_NE(randomBytes(32), randomBytes(32));
}

TEST(RandomBytes, useEveryValue) {
    const std::string bytes = randomBytes(100'000).value();
    for (int value = 0; value < 256; ++value)
        EXPECT_NE(bytes.find(static_cast<char>(value)), std::string::npos) << value;
}

} // namespace marrowbox
