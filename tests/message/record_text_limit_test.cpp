// Texts of the binary and list records hold at most 255 characters (their
// length lies in one byte), so a reader looks no further for a text's end.
#include <gtest/gtest.h>

#include "message/protocol_binary_var.h"
#include "message/protocol_list_text_var.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

// A list record at 0 with one text of the given length at 16, then its byte 0.
Bytes listRecordWithText(size_t length) {
    Bytes image(16 + length + 1, 0);
    image[0] = 3;
    image[2] = 3;
    image[10] = 1;
    image[12] = 16;
    image[14] = static_cast<uint8_t>(length & 0xFF);
    for (size_t i = 0; i < length; ++i) image[16 + i] = 'x';
    return image;
}

// A binary record at 0: TextFor0 of the given length at 18, then an empty TextFor1.
Bytes binaryRecordWithText(size_t length) {
    Bytes image(18 + length + 2, 0);
    image[0] = 2;
    image[2] = 1;
    image[10] = 18;
    for (size_t i = 0; i < length; ++i) image[18 + i] = 'y';
    return image;
}

TEST(RecordTextLimit, ListTextOf255CharactersLoads) {
    ScopedHostContext context;
    clsProtocolistTextVar field;
    Bytes image = listRecordWithText(255);
    field.SetVarBinData(image, 0);
    EXPECT_EQ(field.Texts(), std::vector<std::wstring>{std::wstring(255, L'x')});
    EXPECT_EQ(field.Length(), 255);
}

TEST(RecordTextLimit, ListTextWithoutItsEndWithin255BytesIsRefused) {
    ScopedHostContext context;
    clsProtocolistTextVar field;
    Bytes image = listRecordWithText(256);
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.Texts(), std::vector<std::wstring>{L""});
}

TEST(RecordTextLimit, BinaryTextOf255CharactersLoadsAndOneMoreIsRefused) {
    ScopedHostContext context;
    clsProtocolBinaryVar field;
    Bytes fits = binaryRecordWithText(255);
    field.SetVarBinData(fits, 0);
    EXPECT_EQ(field.TextFor0(), std::wstring(255, L'y'));
    EXPECT_EQ(field.TextFor1(), L"");

    clsProtocolBinaryVar refused;
    Bytes tooLong = binaryRecordWithText(256);
    EXPECT_EQ(runtimeErrorOf([&] { refused.SetVarBinData(tooLong, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(refused.TextFor0(), L"");
}

TEST(RecordTextLimit, TextOffsetBeyondSixteenBitsIsAnOverflow) {
    ScopedHostContext context;
    clsProtocolBinaryVar binary;
    binary.TextFor0(L"ab");
    EXPECT_EQ(runtimeErrorOf([&] { binary.GetVarBinData(65535 - 18 + 1); }), err::Overflow);
    EXPECT_EQ(binary.GetVarBinData(65535 - 18 - 3).size(), 18u + 3u + 1u);

    clsProtocolistTextVar list;
    list.Texts({L"abc"});
    EXPECT_EQ(runtimeErrorOf([&] { list.GetVarBinData(65535); }), err::Overflow);
}

}  // namespace
}  // namespace qx
