#include "Models/SharedText.h"

#include <gtest/gtest.h>
#include <thread>
#include <utility>

namespace marrowbox {

namespace {

const std::string longText = "a text that is longer than a machine word";

/// Where the bytes of a long text lie; shared texts have them at one place.
const void* body(const SharedText& text) {
    return text.view().data();
}

} // namespace

TEST(SharedText, holdsTextsOfEveryLength) {
    for (std::size_t length = 0; length < 70; ++length) {
        std::string text(length, 'x');
        for (std::size_t index = 0; index < length; ++index)
            text[index] = static_cast<char>(index * 37); // NULs and high bytes too
        const SharedText shared(text);
        ASSERT_EQ(shared.view(), text) << length;
        ASSERT_EQ(shared.size(), length);
        ASSERT_EQ(shared.empty(), length == 0);
        ASSERT_EQ(shared.string(), text);
    }
}

TEST(SharedText, holdsTextsAroundTheLengthThatNeedsAWiderHeader) {
    for (const std::size_t length : {65'534U, 65'535U, 65'536U, 200'000U}) {
        std::string text(length, 'x');
        text.front() = 'a';
        text.back() = 'z';
        const SharedText shared(text);
        const SharedText copy = shared;
        EXPECT_EQ(copy.view(), text) << length;
    }
}

TEST(SharedText, isOneMachineWord) {
    EXPECT_EQ(sizeof(SharedText), sizeof(void*));
}

TEST(SharedText, isEmptyByDefault) {
    EXPECT_EQ(SharedText(), SharedText(""));
    EXPECT_EQ(SharedText().view(), "");
}

TEST(SharedText, keepsOneBodyForAllCopies) {
    const SharedText first(longText);
    const SharedText second = first; // NOLINT: the copy is what is looked at
    SharedText third;
    third = second;
    EXPECT_EQ(body(first), body(second));
    EXPECT_EQ(body(first), body(third));
    EXPECT_NE(body(first), body(SharedText(longText)));
}

TEST(SharedText, outlivesTheTextItWasCopiedFrom) {
    SharedText kept;
    {
        const SharedText original(longText);
        kept = original;
    }
    EXPECT_EQ(kept.view(), longText);
}

TEST(SharedText, survivesAssignmentToItself) {
    for (const std::string& text : {std::string("short"), longText}) {
        SharedText shared(text);
        SharedText& itself = shared;
        shared = itself;
        EXPECT_EQ(shared.view(), text);
        shared = std::move(itself);
        EXPECT_EQ(shared.view(), text);
    }
}

TEST(SharedText, swapsShortAndLong) {
    SharedText left("short");
    SharedText right(longText);
    std::swap(left, right);
    EXPECT_EQ(left.view(), longText);
    EXPECT_EQ(right.view(), "short");
}

TEST(SharedText, isEmptyWhenMovedFrom) {
    SharedText source(longText);
    const SharedText target(std::move(source));
    EXPECT_EQ(target.view(), longText);
    EXPECT_EQ(source.view(), ""); // NOLINT: that a text moved from stays usable is the point
}

TEST(SharedText, comparesByItsBytes) {
    EXPECT_EQ(SharedText(longText), SharedText(longText));
    EXPECT_NE(SharedText(longText), SharedText(longText + "!"));
    EXPECT_NE(SharedText("a"), SharedText(std::string_view("a\0", 2)));
    EXPECT_LT(SharedText("a"), SharedText("a b"));
    EXPECT_LT(SharedText("Z"), SharedText("a"));
    EXPECT_LT(SharedText("z"), SharedText("é"));
    EXPECT_LT(SharedText("short"), SharedText("shorter than the other"));
}

TEST(SharedText, hashesEqualTextsAlike) {
    const std::hash<SharedText> hash;
    EXPECT_EQ(hash(SharedText(longText)), hash(SharedText(longText)));
    EXPECT_EQ(hash(SharedText("short")), SharedTextHash()("short"));
    EXPECT_NE(hash(SharedText("short")), hash(SharedText("other")));
}

TEST(SharedText, isCopiedAndDroppedByManyThreads) {
    const SharedText shared(longText);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([mine = shared, &shared] {
            for (int round = 0; round < 5'000; ++round) {
                SharedText copy = round % 2 == 0 ? mine : shared;
                const SharedText another = copy;
                copy = SharedText("short");
                ASSERT_EQ(another.view(), longText);
            }
        });
    threads.clear();
    EXPECT_EQ(shared.view(), longText);
}

TEST(TextPool, givesEqualTextsOneBody) {
    TextPool pool;
    const SharedText first = pool.shared(longText);
    EXPECT_EQ(first.view(), longText);
    EXPECT_EQ(body(first), body(pool.shared(longText)));
    EXPECT_NE(body(first), body(pool.shared(longText + "!")));
    EXPECT_EQ(pool.shared("short").view(), "short");
}

TEST(TextPool, sharesATextThatWasThereBefore) {
    TextPool pool;
    const SharedText known(longText);
    pool.adopt(known);
    EXPECT_EQ(body(pool.shared(longText)), body(known));
}

TEST(TextPool, isOutlivedByItsTexts) {
    SharedText kept;
    {
        TextPool pool;
        kept = pool.shared(longText);
    }
    EXPECT_EQ(kept.view(), longText);
}

} // namespace marrowbox
