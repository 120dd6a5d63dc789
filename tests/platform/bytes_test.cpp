#include "platform/basics/bytes.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/basics/runtime_error.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

TEST(ByteReader, ReadsLittleEndianValues) {
    Bytes data{0x01, 0x02, 0x03, 0x04, 0xFF};
    ByteReader in(data);
    EXPECT_EQ(in.u8(4), 0xFF);
    EXPECT_EQ(in.u16(0), 0x0201);
    EXPECT_EQ(in.u32(0), 0x04030201u);
    EXPECT_EQ(ByteReader(Bytes{0xFE, 0xFF, 0xFF, 0xFF}).i32(0), -2);
}

TEST(ByteReader, ReadOutsideTheBlockIsSubscriptOutOfRange) {
    Bytes data{1, 2, 3};
    ByteReader in(data);
    EXPECT_EQ(runtimeErrorOf([&] { in.u8(3); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.u8(-1); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.u16(2); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.u32(0); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.u32(INT64_MAX); }), 9);
    EXPECT_EQ(runtimeErrorOf([] { ByteReader(Bytes{}).u8(0); }), 9);
}

TEST(ByteReader, UntilZeroStopsAtTheFirstZeroAndFailsWithoutOne) {
    Bytes data{'A', 'B', 0, 'C'};
    ByteReader in(data);
    EXPECT_EQ(in.untilZero(0), (Bytes{'A', 'B'}));
    EXPECT_EQ(in.untilZero(2), Bytes{});
    EXPECT_EQ(runtimeErrorOf([&] { in.untilZero(3); }), 9);
}

TEST(ByteReader, UntilZeroLooksNoFurtherThanItsLimit) {
    Bytes data{'A', 'B', 'C', 0};
    ByteReader in(data);
    EXPECT_EQ(in.untilZero(0, 3), (Bytes{'A', 'B', 'C'}));
    EXPECT_EQ(runtimeErrorOf([&] { in.untilZero(0, 2); }), 9);
    EXPECT_EQ(in.untilZero(3, 0), Bytes{});
}

TEST(ByteReader, BlockIsCheckedOnceAsAWhole) {
    Bytes data{1, 2, 3, 4};
    ByteReader in(data);
    const auto middle = in.block(1, 2);
    EXPECT_EQ(Bytes(middle.begin(), middle.end()), (Bytes{2, 3}));
    EXPECT_EQ(in.block(4, 0).size(), 0u);
    EXPECT_EQ(runtimeErrorOf([&] { in.block(3, 2); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.block(5, 0); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { in.block(-1, 1); }), 9);
    // A count so large that offset + count wraps must not pass.
    EXPECT_EQ(runtimeErrorOf([&] { in.block(2, SIZE_MAX - 1); }), 9);
}

TEST(ByteReader, UntilZeroOfAnEmptyBlockFails) {
    Bytes empty;
    EXPECT_EQ(runtimeErrorOf([&] { ByteReader(empty).untilZero(0); }), 9);
    Bytes data{'A', 0};
    EXPECT_EQ(runtimeErrorOf([&] { ByteReader(data).untilZero(2); }), 9);
    EXPECT_EQ(ByteReader(data).untilZero(0, SIZE_MAX), (Bytes{'A'}));
}

TEST(ByteWriter, BlockIsWritableInPlaceAndCheckedOnce) {
    Bytes data(4, 0);
    ByteWriter out(data);
    auto block = out.block(1, 3);
    block[0] = 7;
    block[2] = 9;
    EXPECT_EQ(data, (Bytes{0, 7, 0, 9}));
    EXPECT_EQ(runtimeErrorOf([&] { out.block(2, 3); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { out.block(1, SIZE_MAX); }), 9);
    EXPECT_EQ(data, (Bytes{0, 7, 0, 9}));
}

TEST(ByteWriter, ReserveKeepsTheBlockWhereItIsWhileItGrows) {
    Bytes data(2, 0);
    ByteWriter out(data);
    out.reserve(1024);
    const uint8_t* before = data.data();
    out.grow(1000);
    EXPECT_EQ(data.data(), before);
    EXPECT_EQ(out.size(), 1002u);
}

TEST(ByteWriter, WritesLittleEndianAndGrowsWithZeros) {
    Bytes data(2, 0);
    ByteWriter out(data);
    out.u16(0, 0x1234);
    out.grow(4);
    out.i32(2, -1);
    EXPECT_EQ(data, (Bytes{0x34, 0x12, 0xFF, 0xFF, 0xFF, 0xFF}));
    out.low16(0, 70000);
    EXPECT_EQ(data[0], 0x70);
    EXPECT_EQ(data[1], 0x11);
}

TEST(ByteWriter, ValueThatDoesNotFitIsOverflow) {
    Bytes data(4, 0);
    ByteWriter out(data);
    EXPECT_EQ(runtimeErrorOf([&] { out.u8(0, 256); }), 6);
    EXPECT_EQ(runtimeErrorOf([&] { out.u8(0, -1); }), 6);
    EXPECT_EQ(runtimeErrorOf([&] { out.u16(0, 65536); }), 6);
    EXPECT_EQ(data, Bytes(4, 0));
}

TEST(ByteWriter, WriteOutsideTheBlockIsSubscriptOutOfRange) {
    Bytes data(2, 0);
    ByteWriter out(data);
    EXPECT_EQ(runtimeErrorOf([&] { out.u8(2, 1); }), 9);
    EXPECT_EQ(runtimeErrorOf([&] { out.copy(1, Bytes{1, 2}); }), 9);
}

}  // namespace
}  // namespace qx
