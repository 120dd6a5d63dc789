// The address table of a TCP/IP Config: its 418-byte image, written out here
// byte by byte from the layout, read back into records and linked MIs, the
// six-byte parameters, and the texts the address grid shows.
#include "tcpip/mdl_eth_protocol.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::concat;
using test::raisedError;
using test::runtimeErrorOf;
using test::zeros;

// 192.168.1.10 and 10.0.0.1, first octet in the lowest byte.
constexpr int32_t kIp192_168_1_10 = 0x0A01A8C0;
constexpr int32_t kIp10_0_0_1 = 0x0100000A;

OperandPtr mi(int32_t address) {
    OperandPtr operand = newOperand();
    test::linkOperand(*operand, 3, address);
    return operand;
}

AddressParam constant(int32_t value) { return AddressParam{nullptr, value}; }
AddressParam linked(int32_t address) { return AddressParam{mi(address), 0}; }

// The ASCII letters of a description, as the image holds them.
Bytes ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }
Bytes blanks(size_t count) { return Bytes(count, 0x20); }

// A record with no IP, no port and no description.
const Bytes kEmptyRecord = concat({{0, 0}, {1, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0}, blanks(12)});

// Five rows of every kind, then eleven empty ones:
//  0  IP 192.168.1.10, port 502, a description of exactly 12 characters
//  1  IP on MI 200, port on MI 204, a short description
//  2  IP 10.0.0.1, port on MI 65535, a description cut at 12
//  3  no IP, port 20000, "Café": used flag 0, port kept
//  4  IP on MI 0, no port, a character of the code page and one outside it
std::vector<EthAddress> mixedTable() {
    std::vector<EthAddress> table(16);
    table[0] = {constant(kIp192_168_1_10), constant(502), L"PLC NORTH 01"};
    table[1] = {linked(200), linked(204), L"Scale"};
    table[2] = {constant(kIp10_0_0_1), linked(65535), L"A longer description"};
    table[3] = {constant(0), constant(20000), L"Caf\u00e9"};
    table[4] = {linked(0), constant(0), L"\u03a9\u20ac"};
    return table;
}

const Bytes kMixedImage = concat({
    {100, 16},                                   // version, count
    {1, 0},                                      // 2: record 0, used
    {1, 0, 0xC0, 0xA8, 0x01, 0x0A},              // 4: 192.168.1.10
    {1, 0, 0xF6, 0x01, 0x00, 0x00},              // 10: 502
    ascii("PLC NORTH 01"),                       // 16
    {1, 0},                                      // 28: record 1, used
    {0, 0, 0xC8, 0x00, 0, 0},                    // 30: MI 200
    {0, 0, 0xCC, 0x00, 0, 0},                    // 36: MI 204
    concat({ascii("Scale"), blanks(7)}),         // 42
    {1, 0},                                      // 54: record 2, used
    {1, 0, 0x0A, 0x00, 0x00, 0x01},              // 56: 10.0.0.1
    {0, 0, 0xFF, 0xFF, 0, 0},                    // 62: MI 65535
    ascii("A longer des"),                       // 68
    {0, 0},                                      // 80: record 3, no IP
    {1, 0, 0, 0, 0, 0},                          // 82: no IP
    {1, 0, 0x20, 0x4E, 0x00, 0x00},              // 88: 20000
    concat({{'C', 'a', 'f', 0xE9}, blanks(8)}),  // 94
    {1, 0},                                      // 106: record 4, used
    {0, 0, 0x00, 0x00, 0, 0},                    // 108: MI 0
    {1, 0, 0, 0, 0, 0},                          // 114: no port
    concat({{'?', 0x80}, blanks(10)}),           // 120
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,  // 132: records 5 to 10
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,
    kEmptyRecord,  // 288: records 11 to 15
});

// The table a new instance starts with.
std::vector<EthAddress> newInstanceTable() {
    std::vector<EthAddress> table(16);
    for (size_t i = 0; i < table.size(); ++i) {
        table[i].Port.Value = 20000;
        table[i].Description = L"Address " + std::to_wstring(i);
    }
    return table;
}

Bytes newInstanceRecord(const std::string& description) {
    return concat(
        {{0, 0}, {1, 0, 0, 0, 0, 0}, {1, 0, 0x20, 0x4E, 0, 0}, ascii(description), blanks(12 - description.size())});
}

// Records 0 and 1 of the mixed table as a table of two.
const Bytes kTwoRecordImage = concat({
    {100, 2},
    {1, 0, 1, 0, 0xC0, 0xA8, 0x01, 0x0A, 1, 0, 0xF6, 0x01, 0x00, 0x00},
    ascii("PLC NORTH 01"),
    {1, 0, 0, 0, 0xC8, 0x00, 0, 0, 0, 0, 0xCC, 0x00, 0, 0},
    concat({ascii("Scale"), blanks(7)}),
});

// --- Build ---------------------------------------------------------------

TEST(AddressTableImage, BuildWritesEveryRecordByteForByte) {
    ScopedHostContext context;
    ASSERT_EQ(kMixedImage.size(), 418u);
    EXPECT_EQ(BuildAddressTableImage(mixedTable()), kMixedImage);
}

TEST(AddressTableImage, BuildOfANewInstanceTableGivesPort20000AndNumberedDescriptions) {
    ScopedHostContext context;
    Bytes expected{100, 16};
    for (int i = 0; i < 16; ++i) expected = concat({expected, newInstanceRecord("Address " + std::to_string(i))});
    ASSERT_EQ(expected.size(), eth::AddressTableSize);
    EXPECT_EQ(BuildAddressTableImage(newInstanceTable()), expected);
}

TEST(AddressTableImage, BuildWritesAPortWithoutIpWithUsedFlag0AndKeepsThePort) {
    ScopedHostContext context;
    std::vector<EthAddress> table(1);
    table[0].Port = linked(7);
    EXPECT_EQ(BuildAddressTableImage(table),
              concat({{100, 1}, {0, 0}, {1, 0, 0, 0, 0, 0}, {0, 0, 7, 0, 0, 0}, blanks(12)}));
}

TEST(AddressTableImage, BuildWritesTheArraySizeAsTheCount) {
    ScopedHostContext context;
    std::vector<EthAddress> mixed = mixedTable();
    EXPECT_EQ(BuildAddressTableImage({mixed[0], mixed[1]}), kTwoRecordImage);
    EXPECT_EQ(BuildAddressTableImage({}), (Bytes{100, 0}));
}

TEST(AddressTableImage, BuildOfMoreThan255RecordsIsAnOverflow) {
    ScopedHostContext context;
    EXPECT_EQ(BuildAddressTableImage(std::vector<EthAddress>(255)).size(), 2u + 255 * 26);
    EXPECT_EQ(raisedError([] { BuildAddressTableImage(std::vector<EthAddress>(256)); }).Number(), err::Overflow);
}

TEST(AddressTableImage, BuildOfAnOperandAddressBeyondAWordIsAnOverflow) {
    ScopedHostContext context;
    std::vector<EthAddress> table(16);
    table[15].Port = linked(65536);
    EXPECT_EQ(raisedError([&] { BuildAddressTableImage(table); }).Number(), err::Overflow);
    table[15].Port = {};
    table[3].IpAddress = linked(70000);
    EXPECT_EQ(raisedError([&] { BuildAddressTableImage(table); }).Number(), err::Overflow);
}

// An operand the picker never linked has the address -1, which no word holds.
TEST(AddressTableImage, BuildOfAnUnlinkedOperandIsAnOverflow) {
    ScopedHostContext context;
    std::vector<EthAddress> table(1);
    table[0].IpAddress.Operand = newOperand();
    EXPECT_EQ(raisedError([&] { BuildAddressTableImage(table); }).Number(), err::Overflow);
}

// --- Parse ---------------------------------------------------------------

void expectLinkedMi(const AddressParam& param, int32_t address) {
    ASSERT_NE(param.Operand, nullptr);
    EXPECT_EQ(param.Value, 0);
    EXPECT_EQ(param.Operand->OperandType(), 3);
    EXPECT_EQ(param.Operand->OperandAddress(), address);
    EXPECT_EQ(param.Operand->OperandMode(), 1);
    EXPECT_FALSE(param.Operand->IsNew());
    EXPECT_TRUE(param.Operand->IsRegistered());
}

void expectConstant(const AddressParam& param, int32_t value) {
    EXPECT_EQ(param.Operand, nullptr);
    EXPECT_EQ(param.Value, value);
}

TEST(AddressTableImage, ParseReadsBackEveryRecordWithItsPaddingBlanks) {
    ScopedHostContext context;
    const std::vector<EthAddress> table = ParseAddressTableImage(kMixedImage);
    ASSERT_EQ(table.size(), 16u);
    expectConstant(table[0].IpAddress, kIp192_168_1_10);
    expectConstant(table[0].Port, 502);
    EXPECT_EQ(table[0].Description, L"PLC NORTH 01");
    expectLinkedMi(table[1].IpAddress, 200);
    expectLinkedMi(table[1].Port, 204);
    EXPECT_EQ(table[1].Description, L"Scale       ");
    expectConstant(table[2].IpAddress, kIp10_0_0_1);
    expectLinkedMi(table[2].Port, 65535);
    EXPECT_EQ(table[2].Description, L"A longer des");
    expectConstant(table[3].IpAddress, 0);
    expectConstant(table[3].Port, 20000);
    EXPECT_EQ(table[3].Description, L"Caf\u00e9        ");
    expectLinkedMi(table[4].IpAddress, 0);
    expectConstant(table[4].Port, 0);
    EXPECT_EQ(table[4].Description, L"?\u20ac          ");
    for (size_t i = 5; i < table.size(); ++i) {
        expectConstant(table[i].IpAddress, 0);
        expectConstant(table[i].Port, 0);
        EXPECT_EQ(table[i].Description, std::wstring(12, L' '));
    }
    EXPECT_EQ(context->Operands.LinkCount(3, 200), 1);
    EXPECT_EQ(context->Operands.LinkCount(3, 204), 1);
    EXPECT_EQ(context->Operands.LinkCount(3, 65535), 1);
    EXPECT_EQ(context->Operands.LinkCount(3, 0), 1);
}

TEST(AddressTableImage, ParsedTableBuildsTheSameImage) {
    ScopedHostContext context;
    EXPECT_EQ(BuildAddressTableImage(ParseAddressTableImage(kMixedImage)), kMixedImage);
}

// A link the host already knows is taken as it is; an unknown one is
// registered once.
TEST(AddressTableImage, ParseRegistersOnlyTheMisTheHostDoesNotKnow) {
    ScopedHostContext context;
    context->Operands.Register(3, 200, 1, 0);
    ParseAddressTableImage(kMixedImage);
    EXPECT_EQ(context->Operands.LinkCount(3, 200), 1);
    EXPECT_EQ(context->Operands.LinkCount(3, 204), 1);
    ParseAddressTableImage(kMixedImage);
    EXPECT_EQ(context->Operands.LinkCount(3, 204), 1);
}

TEST(AddressTableImage, ParseReadsAsManyRecordsAsByte1Says) {
    ScopedHostContext context;
    const std::vector<EthAddress> two = ParseAddressTableImage(kTwoRecordImage);
    ASSERT_EQ(two.size(), 2u);
    expectConstant(two[0].IpAddress, kIp192_168_1_10);
    expectLinkedMi(two[1].Port, 204);
    EXPECT_EQ(two[1].Description, L"Scale       ");

    // A count below the records that follow leaves the rest unread: record 1's MIs stay unknown.
    ScopedHostContext fresh;
    Bytes image = kMixedImage;
    image[1] = 1;
    const std::vector<EthAddress> one = ParseAddressTableImage(image);
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].Description, L"PLC NORTH 01");
    EXPECT_TRUE(fresh->Operands.Links().empty());

    EXPECT_TRUE(ParseAddressTableImage(Bytes{100, 0}).empty());
}

// 100 is the only version there is; the reader does not look at it.
TEST(AddressTableImage, ParseTakesAnyVersionByte) {
    ScopedHostContext context;
    Bytes image = kTwoRecordImage;
    image[0] = 0;
    EXPECT_EQ(ParseAddressTableImage(image).size(), 2u);
}

TEST(AddressTableImage, ParseOfAnImageShorterThanItsCountIsSubscriptOutOfRange) {
    ScopedHostContext context;
    for (size_t length : {0u, 1u, 2u, 27u, 28u, 30u, 104u, 417u}) {
        const Bytes image(kMixedImage.begin(), kMixedImage.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(runtimeErrorOf([&] { ParseAddressTableImage(image); }), err::SubscriptOutOfRange) << length;
    }
    for (size_t length : {2u, 28u, 53u}) {
        const Bytes image(kTwoRecordImage.begin(), kTwoRecordImage.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(runtimeErrorOf([&] { ParseAddressTableImage(image); }), err::SubscriptOutOfRange) << length;
    }
    // A count of 255 on a full table of 16.
    Bytes lying = kMixedImage;
    lying[1] = 255;
    EXPECT_EQ(runtimeErrorOf([&] { ParseAddressTableImage(lying); }), err::SubscriptOutOfRange);
}

// The extent is checked before the first record is read, so that a short
// image leaves no link behind in the host's table.
TEST(AddressTableImage, ParseOfAShortImageRegistersNothing) {
    ScopedHostContext context;
    const Bytes image(kMixedImage.begin(), kMixedImage.end() - 1);
    EXPECT_EQ(runtimeErrorOf([&] { ParseAddressTableImage(image); }), err::SubscriptOutOfRange);
    EXPECT_FALSE(context->Operands.IsRegistered(3, 200));
    EXPECT_TRUE(context->Operands.Links().empty());
}

// --- Operands of a table, read and moved without linking them ------------

TEST(AddressTableOperands, ListsEveryLinkedMiWithItsRecordKindAndSpan) {
    ScopedHostContext context;
    const std::vector<AddressTableOperand> operands = AddressTableOperands(kMixedImage);
    ASSERT_EQ(operands.size(), 4u);
    const auto is = [](const AddressTableOperand& o, int32_t record, int32_t kind, int32_t address, int32_t span) {
        return o.Record == record && o.Kind == kind && o.Address == address && o.VectorLength == span;
    };
    EXPECT_TRUE(is(operands[0], 1, eth::AddressKindIP, 200, 4));
    EXPECT_TRUE(is(operands[1], 1, eth::AddressKindPort, 204, 1));
    EXPECT_TRUE(is(operands[2], 2, eth::AddressKindPort, 65535, 1));
    EXPECT_TRUE(is(operands[3], 4, eth::AddressKindIP, 0, 4));
    // Read only: the host's table learns nothing.
    EXPECT_TRUE(context->Operands.Links().empty());
}

TEST(AddressTableOperands, ReplaceChangesOnlyTheAddressBytesOfThatMi) {
    ScopedHostContext context;
    Bytes image = kMixedImage;
    EXPECT_EQ(ReplaceAddressTableOperand(image, 204, 0x1234), 1);
    Bytes expected = kMixedImage;
    expected[38] = 0x34;
    expected[39] = 0x12;
    EXPECT_EQ(image, expected);
    EXPECT_EQ(ReplaceAddressTableOperand(image, 7, 8), 0);
    EXPECT_EQ(image, expected);
    EXPECT_TRUE(context->Operands.Links().empty());
}

TEST(AddressTableOperands, ReplaceOfEveryRecordNamingTheMi) {
    ScopedHostContext context;
    Bytes image = kTwoRecordImage;
    image[kTwoRecordImage.size() - 16] = 0xC8;  // the port of record 1 on MI 200 too
    EXPECT_EQ(ReplaceAddressTableOperand(image, 200, 300), 2);
    EXPECT_EQ(image[32], 0x2C);
    EXPECT_EQ(image[33], 0x01);
    EXPECT_EQ(image[38], 0x2C);
    EXPECT_EQ(image[39], 0x01);
}

TEST(AddressTableOperands, AShortImageOrAnAddressBeyondAWordChangesNothing) {
    ScopedHostContext context;
    Bytes shortImage(kMixedImage.begin(), kMixedImage.end() - 1);
    const Bytes before = shortImage;
    EXPECT_EQ(runtimeErrorOf([&] { AddressTableOperands(shortImage); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { ReplaceAddressTableOperand(shortImage, 200, 201); }), err::SubscriptOutOfRange);
    EXPECT_EQ(shortImage, before);
    Bytes image = kMixedImage;
    EXPECT_EQ(runtimeErrorOf([&] { ReplaceAddressTableOperand(image, 200, 65536); }), err::Overflow);
    EXPECT_EQ(image, kMixedImage);
}

// --- Parameters ----------------------------------------------------------

TEST(AddressParamBytes, ConstantIsFlag1AndTheValueLittleEndian) {
    ScopedHostContext context;
    EXPECT_EQ(AddressParamToBytes(constant(kIp192_168_1_10)), (Bytes{1, 0, 0xC0, 0xA8, 0x01, 0x0A}));
    EXPECT_EQ(AddressParamToBytes(constant(502)), (Bytes{1, 0, 0xF6, 0x01, 0, 0}));
    EXPECT_EQ(AddressParamToBytes(constant(-2)), (Bytes{1, 0, 0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(AddressParamToBytes(AddressParam{}), (Bytes{1, 0, 0, 0, 0, 0}));
}

TEST(AddressParamBytes, OperandIsFlag0AndItsAddressAsAWord) {
    ScopedHostContext context;
    EXPECT_EQ(AddressParamToBytes(linked(200)), (Bytes{0, 0, 0xC8, 0, 0, 0}));
    EXPECT_EQ(AddressParamToBytes(linked(65535)), (Bytes{0, 0, 0xFF, 0xFF, 0, 0}));
    // The operand wins over a value left beside it.
    EXPECT_EQ(AddressParamToBytes(AddressParam{mi(0x1234), 99}), (Bytes{0, 0, 0x34, 0x12, 0, 0}));
}

TEST(AddressParamBytes, OperandAddressBeyondAWordIsAnOverflow) {
    ScopedHostContext context;
    EXPECT_EQ(raisedError([] { AddressParamToBytes(linked(65536)); }).Number(), err::Overflow);
    EXPECT_EQ(raisedError([] { AddressParamToBytes(linked(-1)); }).Number(), err::Overflow);
}

TEST(AddressParamBytes, Flag0ReadsANewLinkedMiAndRegistersIt) {
    ScopedHostContext context;
    const AddressParam param = BytesToAddressParam(Bytes{0, 0, 0xC8, 0x00, 0, 0});
    expectLinkedMi(param, 200);
    EXPECT_EQ(context->Operands.LinkCount(3, 200), 1);
    // Bytes 4 and 5 do not belong to the address.
    expectLinkedMi(BytesToAddressParam(Bytes{0, 0, 0xFF, 0xFF, 0x12, 0x34}), 65535);
}

TEST(AddressParamBytes, AnyOtherFlagReadsTheValue) {
    ScopedHostContext context;
    expectConstant(BytesToAddressParam(Bytes{1, 0, 0xC0, 0xA8, 0x01, 0x0A}), kIp192_168_1_10);
    expectConstant(BytesToAddressParam(Bytes{7, 9, 0xFE, 0xFF, 0xFF, 0xFF}), -2);
    expectConstant(BytesToAddressParam(Bytes{1, 0, 0, 0, 0, 0}), 0);
    EXPECT_TRUE(context->Operands.Links().empty());
}

TEST(AddressParamBytes, ReadsOnlyTheFirstSixBytes) {
    ScopedHostContext context;
    expectConstant(BytesToAddressParam(Bytes{1, 0, 0xF6, 0x01, 0, 0, 0xAA, 0xBB}), 502);
}

TEST(AddressParamBytes, FewerThanSixBytesIsSubscriptOutOfRange) {
    ScopedHostContext context;
    for (size_t length = 0; length < 6; ++length) {
        const Bytes bytes(length, 0);
        EXPECT_EQ(runtimeErrorOf([&] { BytesToAddressParam(bytes); }), err::SubscriptOutOfRange) << length;
    }
    EXPECT_TRUE(context->Operands.Links().empty());
}

// --- Used and text -------------------------------------------------------

TEST(AddressParamUse, UsedWhenLinkedOrNotZero) {
    ScopedHostContext context;
    EXPECT_FALSE(IsAddressParamUsed(AddressParam{}));
    EXPECT_TRUE(IsAddressParamUsed(constant(kIp192_168_1_10)));
    EXPECT_TRUE(IsAddressParamUsed(constant(-1)));
    EXPECT_TRUE(IsAddressParamUsed(linked(0)));
    EXPECT_TRUE(IsAddressParamUsed(AddressParam{mi(5), 1}));
}

TEST(AddressParamText, ConstantIpIsItsOctetsLowestByteFirst) {
    ScopedHostContext context;
    EXPECT_EQ(GetAddressParamText(constant(kIp192_168_1_10), eth::AddressKindIP), L"192.168.1.10");
    EXPECT_EQ(GetAddressParamText(constant(kIp10_0_0_1), eth::AddressKindIP), L"10.0.0.1");
    EXPECT_EQ(GetAddressValueText(constant(-1), eth::AddressKindIP), L"255.255.255.255");
}

TEST(AddressParamText, ConstantOfAnyOtherKindIsTheSignedNumber) {
    ScopedHostContext context;
    EXPECT_EQ(GetAddressParamText(constant(502), eth::AddressKindPort), L"502");
    EXPECT_EQ(GetAddressValueText(constant(-1), eth::AddressKindPort), L"-1");
    EXPECT_EQ(GetAddressValueText(constant(std::numeric_limits<int32_t>::min()), eth::AddressKindPort), L"-2147483648");
    EXPECT_EQ(GetAddressValueText(constant(kIp192_168_1_10), 0), L"167880896");
    EXPECT_EQ(GetAddressValueText(constant(20000), 3), L"20000");
}

TEST(AddressParamText, ZeroIsEmpty) {
    ScopedHostContext context;
    for (int32_t kind : {eth::AddressKindIP, eth::AddressKindPort}) {
        EXPECT_EQ(GetAddressParamText(AddressParam{}, kind), L"");
        EXPECT_EQ(GetAddressValueText(AddressParam{}, kind), L"");
    }
}

TEST(AddressParamText, LinkedIsTheOperandsDisplayName) {
    ScopedHostContext context;
    EXPECT_EQ(GetAddressParamText(linked(200), eth::AddressKindIP), L"MI 200");
    EXPECT_EQ(GetAddressParamText(AddressParam{mi(7), 502}, eth::AddressKindPort), L"MI 7");
    // The value text alone does not look at the operand.
    EXPECT_EQ(GetAddressValueText(AddressParam{mi(7), 502}, eth::AddressKindPort), L"502");
    EXPECT_EQ(GetAddressValueText(linked(7), eth::AddressKindPort), L"");
}

}  // namespace
}  // namespace qx
