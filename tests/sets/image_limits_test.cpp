// Where images meet the limits of their format: offsets are 16-bit, so a set
// whose image would need more refuses to write rather than write an image
// that loads as something else; and texts that a lying image shares between
// many fields cannot make a load run away.
#include <gtest/gtest.h>

#include <algorithm>

#include "message/protocol_list_text_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "sets/set_test_support.h"

namespace qx {
namespace {

using test::putText;
using test::runtimeErrorOf;

// Every message a full run of 255 letters of fixed text.
template <class Set>
void fillWithFullTextMessages(Set& set, int32_t count) {
    while (set.NumberOfMessages() < count) ASSERT_TRUE(set.AppendMessage());
    for (int32_t number = 1; number <= count; ++number)
        putText(*set.GetMessage(number), 0, std::wstring(255, static_cast<wchar_t>(L'A' + number % 26)));
}

TEST(ImageLimits, SendSetBeyondSixteenBitOffsetsIsAnOverflowNotACorruptImage) {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    fillWithFullTextMessages(set, 255);
    EXPECT_EQ(runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(ImageLimits, ScanSetBeyondSixteenBitOffsetsIsAnOverflowNotACorruptImage) {
    ScopedHostContext context;
    clsProtocolScanSrv set;
    fillWithFullTextMessages(set, 255);
    EXPECT_EQ(runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(ImageLimits, SendSetJustBelowTheLimitWritesAndLoadsBack) {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    fillWithFullTextMessages(set, 230);
    Bytes image = set.BinaryData();
    // 58 + 2 * 230 header and table, then 230 messages of 4 + 18 + 4 + 255 bytes, each rounded up to even.
    EXPECT_EQ(image.size(), 58u + 460u + 230u * 282u);
    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.NumberOfMessages(), 230);
    EXPECT_EQ(loaded.GetMessage(230)->MessageString().substr(0, 255), std::wstring(255, L'A' + 230 % 26));
    // Bytes 6 and 7 hold the message number constant's place in the host's
    // table, which a load allocates anew; everything else comes back as it was.
    Bytes again = loaded.BinaryData();
    ASSERT_EQ(again.size(), image.size());
    EXPECT_TRUE(std::equal(again.begin() + 8, again.end(), image.begin() + 8));
}

// N messages that all point at one message of one list field, whose record
// holds one text of ten letters: 618 bytes in all.
Bytes sharedListImage(uint8_t messages) {
    Bytes image(618, 0);
    image[56] = messages;
    for (size_t i = 0; i < messages; ++i) {
        image[58 + 2 * i] = 568 & 0xFF;
        image[59 + 2 * i] = 568 >> 8;
    }
    image[568] = 1;           // one segment
    image[572] = 2;           // a list of texts
    image[574] = 590 & 0xFF;  // its record at 590
    image[575] = 590 >> 8;
    image[590] = 3;           // record kind
    image[592] = 3;           // MI
    image[600] = 1;           // one text
    image[602] = 606 & 0xFF;  // at 606
    image[603] = 606 >> 8;
    image[604] = 10;
    for (size_t i = 0; i < 10; ++i) image[606 + i] = static_cast<uint8_t>('A' + i);
    return image;
}

TEST(ImageLimits, TextsLoadedFromASharedRecordMayNotExceedTheImage) {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    // 61 loads of ten letters are 610 characters, within the 618 bytes of the image.
    set.BinaryData(sharedListImage(61));
    EXPECT_EQ(set.NumberOfMessages(), 61);
    auto field = std::dynamic_pointer_cast<clsProtocolistTextVar>(set.GetMessage(61)->GetVar(1));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->Texts(), std::vector<std::wstring>{L"ABCDEFGHIJ"});

    clsProtocolSendSrv tooMany;
    EXPECT_EQ(runtimeErrorOf([&] { tooMany.BinaryData(sharedListImage(62)); }), err::SubscriptOutOfRange);
}

}  // namespace
}  // namespace qx
