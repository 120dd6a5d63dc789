#include "project/sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace qx {
namespace {

std::string hexOf(const std::string& text) {
    return sha256Hex(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

TEST(Sha256Test, EmptyInputGivesTheKnownDigest) {
    EXPECT_EQ(hexOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256Hex(nullptr, 0), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Sha256Test, ShortMessagesGiveTheKnownDigests) {
    EXPECT_EQ(hexOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(hexOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Sha256Test, OneMillionLettersAGiveTheKnownDigest) {
    EXPECT_EQ(hexOf(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// 55 bytes leave just room for the padding and length in one block; 56 to 63
// push the length into a second block; 64 and 65 start a new one.
TEST(Sha256Test, LengthsAroundTheBlockEdgePadCorrectly) {
    const std::vector<std::pair<size_t, std::string>> expected = {
        {55, "d5e285683cd4efc02d021a5c62014694958901005d6f71e89e0989fac77e4072"},
        {56, "04c26261370ee7541549d16dee320c723e3fd14671e66a099afe0a377c16888e"},
        {63, "75220b47218278e656f2013bb8f0c455a25eaf01e86c64924e9d48d89776d6f2"},
        {64, "7ce100971f64e7001e8fe5a51973ecdfe1ced42befe7ee8d5fd6219506b5393c"},
        {65, "9537c5fdf120482f7d58d25e9ed583f52c02b4e304ea814db1633ad565aed7e9"},
        {119, "000b48d4edf0fa7bee3c6236ecd2785baa5db4eeb8bb54341b029e0d9fa5fb0c"},
        {120, "13f05a0b594787f5ecd315edc96141bd3243203d1b7d4f0836f37308b276ba98"},
    };
    for (const auto& [length, digest] : expected) EXPECT_EQ(hexOf(std::string(length, 'x')), digest) << length;
}

TEST(Sha256Test, PiecesOfAnySizeGiveTheDigestOfTheWhole) {
    std::vector<uint8_t> bytes;
    for (int round = 0; round < 4; ++round)
        for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<uint8_t>(i));
    const std::string whole = "785b0751fc2c53dc14a4ce3d800e69ef9ce1009eb327ccf458afe09c242c26c9";
    ASSERT_EQ(sha256Hex(bytes.data(), bytes.size()), whole);
    for (size_t piece : {1u, 3u, 63u, 64u, 65u, 100u, 1023u}) {
        Sha256 hash;
        for (size_t at = 0; at < bytes.size(); at += piece)
            hash.update(bytes.data() + at, std::min(piece, bytes.size() - at));
        EXPECT_EQ(hash.hexDigest(), whole) << piece;
    }
}

TEST(Sha256Test, ADigestStartsTheHashOver) {
    Sha256 hash;
    hash.update(reinterpret_cast<const uint8_t*>("abc"), 3);
    const std::array<uint8_t, 32> first = hash.digest();
    EXPECT_EQ(first[0], 0xba);
    EXPECT_EQ(first[31], 0xad);
    EXPECT_EQ(hash.hexDigest(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
}  // namespace qx
