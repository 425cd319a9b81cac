#include "Platform/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox {

namespace {

Descriptor opened() {
    return Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}
bool isOpen(int number) {
    return ::fcntl(number, F_GETFD) >= 0;
}

} // namespace

TEST(Descriptor, isEmptyByDefault) {
    const Descriptor none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.number(), -1);
}

TEST(Descriptor, closesWithTheObject) {
    int number = -1;
    {
        const Descriptor file = opened();
        number = file.number();
        ASSERT_TRUE(file);
        ASSERT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, closesOnceWhenItIsMoved) {
    Descriptor first = opened();
    const int number = first.number();
    {
        const Descriptor second(std::move(first));
        EXPECT_FALSE(first); // NOLINT: what is left behind is looked at
        EXPECT_EQ(second.number(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, closesWhatItHeldWhenAssigned) {
    Descriptor first = opened();
    const int closed = first.number();
    Descriptor second = opened();
    const int kept = second.number();
    first = std::move(second);
    EXPECT_FALSE(isOpen(closed));
    EXPECT_TRUE(isOpen(kept));
    EXPECT_EQ(first.number(), kept);
}

TEST(Descriptor, survivesAssignmentToItself) {
    Descriptor file = opened();
    Descriptor& itself = file;
    file = std::move(itself);
    EXPECT_TRUE(isOpen(file.number()));
}

TEST(Descriptor, isGivenAwayOpen) {
    Descriptor file = opened();
    const int number = file.release();
    EXPECT_FALSE(file);
    file.close();
    EXPECT_TRUE(isOpen(number));
    ::close(number);
}

TEST(Descriptor, closesAtOnceWhenAsked) {
    Descriptor file = opened();
    const int number = file.number();
    file.close();
    EXPECT_FALSE(isOpen(number));
    EXPECT_FALSE(file);
    file.close();
}

} // namespace marrowbox
