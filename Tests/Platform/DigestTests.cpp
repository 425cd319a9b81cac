#include "Platform/Digest.h"

#include <gtest/gtest.h>

namespace marrowbox {

namespace {

std::string digestOf(Digest digest, std::string_view bytes) {
    digest.update(bytes);
    return hexadecimal(digest.finish());
}

} // namespace

TEST(Digest, givesTheKnownAnswers) {
    EXPECT_EQ(digestOf(Digest::sha256(), ""),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(digestOf(Digest::sha256(), "abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digestOf(Digest::sha256(), std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_EQ(digestOf(Digest::md5(), ""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(digestOf(Digest::md5(), "message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
}

TEST(Digest, isTheSameInAnyPieces) {
    const std::string bytes(1000, 'x');
    const std::string whole = digestOf(Digest::sha256(), bytes);
    for (std::size_t cut = 0; cut <= bytes.size(); cut += 37) {
        Digest digest = Digest::sha256();
        digest.update(std::string_view(bytes).substr(0, cut));
        digest.update({});
        digest.update(std::string_view(bytes).substr(cut));
        ASSERT_EQ(hexadecimal(digest.finish()), whole) << cut;
    }
}

TEST(Digest, isTakenInOneCall) {
    EXPECT_EQ(hexadecimal(sha256("abc")), digestOf(Digest::sha256(), "abc"));
}

TEST(Hexadecimal, writesTwoLowerCaseDigitsForEachByte) {
    EXPECT_EQ(hexadecimal(""), "");
    EXPECT_EQ(hexadecimal(std::string_view("\x00\x0f\x10\xab\xff", 5)), "000f10abff");
}

} // namespace marrowbox
