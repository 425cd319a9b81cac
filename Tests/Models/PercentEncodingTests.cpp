#include "Models/PercentEncoding.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

/// The bytes that stand for themselves, in the order of their numbers.
std::string keptBytes(std::string_view plainMarks) {
    std::string kept;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string encoded = percentEncoded(std::string(1, static_cast<char>(byte)), plainMarks);
        if (encoded.size() == 1)
            kept += encoded;
        else
            EXPECT_EQ(encoded.size(), 3U) << byte;
    }
    return kept;
}

std::string everyByte() {
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    return text;
}

} // namespace

TEST(PercentEncoding, leavesExactlyTheUnreservedCharacters) {
    EXPECT_EQ(keptBytes(unreservedMarks),
              "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
}

TEST(PercentEncoding, leavesTheMarksThatItIsTold) {
    EXPECT_EQ(percentEncoded("/a-b c", "/"), "/a%2Db%20c");
}

TEST(PercentEncoding, isUndoneForEveryByte) {
    EXPECT_EQ(percentDecoded(percentEncoded(everyByte())), everyByte());
}

TEST(PercentEncoding, isReadInEitherCaseAndBesideWhatIsPlain) {
    EXPECT_EQ(percentDecoded("a%c3%A4+b"), "aä+b");
}

TEST(PercentEncoding, isRefusedWhenAnEscapeIsMalformed) {
    for (const char* text : {"%", "a%", "%4", "%G0", "%0g", "%%41", "% 4", "%-1"})
        EXPECT_EQ(percentDecoded(text), std::nullopt) << text;
}

} // namespace marrowbox
