#include "message/protocol_list_text_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::linkOperand;
using test::runtimeErrorOf;

class ListTextVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(ListTextVarTest, NewFieldHasOneEmptyTextAndLengthZero) {
    clsProtocolistTextVar field;
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_EQ(field.Length(), 0);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.Texts(), std::vector<std::wstring>{L""});
    EXPECT_EQ(field.AlignmentStringSize(), 0);
    EXPECT_EQ(field.DefaultDisplay(), 0);
    EXPECT_EQ(field.GetVarSegmentType(), 2);
}

TEST_F(ListTextVarTest, LinkedOperandIsAWordOrLong) {
    clsProtocolistTextVar field;
    const OperandPtr op = field.LikedOperand();
    EXPECT_EQ(test::allowedTypes(*op), (std::vector<int32_t>{3, 5}));
    EXPECT_EQ(op->OperandType(), 3);
    EXPECT_EQ(op->OperandMode(), 1);
    EXPECT_TRUE(op->IsNew());
    EXPECT_EQ(op->OperandFormat(), 3);
}

TEST_F(ListTextVarTest, ExtendedOperandsAddTypes65And66) {
    context->ExtendedOperands = true;
    clsProtocolistTextVar field;
    EXPECT_EQ(test::allowedTypes(*field.LikedOperand()), (std::vector<int32_t>{3, 5, 65, 66}));
}

TEST_F(ListTextVarTest, LengthIsTheLongestText) {
    clsProtocolistTextVar field;
    field.Texts({L"abc", L"defghij", L"kl"});
    EXPECT_EQ(field.Length(), 7);
}

TEST_F(ListTextVarTest, AlignmentFixesTheLengthAlsoBelowTheLongestText) {
    clsProtocolistTextVar field;
    field.AlignmentStringSize(10);
    // Writing the alignment alone does not recompute.
    EXPECT_EQ(field.Length(), 0);
    field.Texts({L"abc", L"a much longer text"});
    EXPECT_EQ(field.Length(), 10);
}

TEST_F(ListTextVarTest, OneEmptyTextHasLengthZero) {
    clsProtocolistTextVar field;
    field.Texts({L""});
    EXPECT_EQ(field.Length(), 0);
}

TEST_F(ListTextVarTest, TextsGoInAndOutAsCopies) {
    clsProtocolistTextVar field;
    std::vector<std::wstring> texts{L"a", L"b"};
    field.Texts(texts);
    texts[0] = L"changed";
    std::vector<std::wstring> out = field.Texts();
    out[1] = L"changed too";
    EXPECT_EQ(field.Texts(), (std::vector<std::wstring>{L"a", L"b"}));
}

TEST_F(ListTextVarTest, RecordOfThreeTextsIs39BytesWithAbsoluteOffsets) {
    clsProtocolistTextVar field;
    field.Texts({L"RED", L"GREEN!!", L"NO"});
    linkOperand(*field.LikedOperand(), 5, 0x0456);
    const int32_t at = 200;
    // clang-format off
    const Bytes expected{
        3, 0, 5, 0, 0x56, 0x04, 0, 0, 0, 0,  // kind, operand
        3, 0,                                // three texts, no alignment
        at + 24, 0, 3, 0,                    // "RED" behind the 12 + 12 bytes of header and entries
        at + 28, 0, 7, 0,                    // "GREEN!!"
        at + 36, 0, 2, 0,                    // "NO"
        'R', 'E', 'D', 0, 'G', 'R', 'E', 'E', 'N', '!', '!', 0, 'N', 'O', 0};
    // clang-format on
    EXPECT_EQ(field.Length(), 7);
    const Bytes record = field.GetVarBinData(at);
    EXPECT_EQ(record.size(), 39u);
    EXPECT_EQ(record, expected);
}

TEST_F(ListTextVarTest, RecordStoresTheAlignment) {
    clsProtocolistTextVar field;
    field.AlignmentStringSize(3);
    field.Texts({L"A"});
    const Bytes expected{3, 0, 3, 0, 0xFF, 0xFF, 0, 0, 0, 0, 1, 3, 16, 0, 1, 0, 'A', 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);  // unlinked: type 3, address -1
}

TEST_F(ListTextVarTest, ValuesAboveAByteOverflowWhileTheRecordIsBuilt) {
    clsProtocolistTextVar many;
    many.Texts(std::vector<std::wstring>(256, L"x"));
    EXPECT_EQ(runtimeErrorOf([&] { many.GetVarBinData(0); }), err::Overflow);

    clsProtocolistTextVar longText;
    longText.Texts({std::wstring(256, L'x')});
    EXPECT_EQ(runtimeErrorOf([&] { longText.GetVarBinData(0); }), err::Overflow);

    clsProtocolistTextVar alignment;
    alignment.AlignmentStringSize(256);
    EXPECT_EQ(runtimeErrorOf([&] { alignment.GetVarBinData(0); }), err::Overflow);

    clsProtocolistTextVar most;
    most.Texts(std::vector<std::wstring>(255, L"x"));
    EXPECT_EQ(most.GetVarBinData(0).size(), 12u + 4 * 255 + 2 * 255);
}

TEST_F(ListTextVarTest, LoadFollowsEachEntryAndIgnoresItsLengthByte) {
    Bytes image(60, 0xEE);
    const Bytes record{3, 0, 3, 0, 0x09, 0x00, 0, 0, 0, 0, 2, 0, 40, 0, 99, 0, 44, 0, 99, 0};
    std::copy(record.begin(), record.end(), image.begin() + 20);
    const Bytes texts{'O', 'N', 0, 0xEE, 'O', 'F', 'F', 0};
    std::copy(texts.begin(), texts.end(), image.begin() + 40);
    clsProtocolistTextVar field;
    field.SetVarBinData(image, 20);
    EXPECT_EQ(field.Texts(), (std::vector<std::wstring>{L"ON", L"OFF"}));
    EXPECT_EQ(field.AlignmentStringSize(), 0);
    EXPECT_EQ(field.Length(), 3);
    EXPECT_EQ(field.LikedOperand()->OperandType(), 3);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 9);
    EXPECT_FALSE(field.LikedOperand()->IsNew());
    EXPECT_TRUE(context->Operands.IsRegistered(3, 9));
}

TEST_F(ListTextVarTest, ListRoundTripsInFullAndInOrder) {
    clsProtocolistTextVar field;
    field.Texts({L"zero", L"", L"two \u00e9", L"three"});
    field.DefaultDisplay(2);
    linkOperand(*field.LikedOperand(), 5, 321);
    const size_t at = 120;
    Bytes image = test::dataAreaImage(field.GetVarBinData(at), at);
    clsProtocolistTextVar loaded;
    loaded.SetVarBinData(image, at);
    EXPECT_EQ(loaded.Texts(), (std::vector<std::wstring>{L"zero", L"", L"two \u00e9", L"three"}));
    EXPECT_EQ(loaded.Length(), 5);
    EXPECT_EQ(loaded.DefaultDisplay(), 0);
    EXPECT_EQ(loaded.LikedOperand()->OperandAddress(), 321);
    EXPECT_EQ(loaded.GetVarBinData(at), field.GetVarBinData(at));
}

TEST_F(ListTextVarTest, AlignmentBelowTheLongestTextLoadsAsTheLength) {
    clsProtocolistTextVar field;
    field.AlignmentStringSize(3);
    field.Texts({L"abcdefg", L"ab"});
    Bytes image = test::dataAreaImage(field.GetVarBinData(40), 40);
    clsProtocolistTextVar loaded;
    loaded.SetVarBinData(image, 40);
    EXPECT_EQ(loaded.AlignmentStringSize(), 3);
    EXPECT_EQ(loaded.Length(), 3);
    EXPECT_EQ(loaded.Texts(), (std::vector<std::wstring>{L"abcdefg", L"ab"}));
}

TEST_F(ListTextVarTest, ARecordWithNoTextsIsAnInvalidRange) {
    Bytes image{3, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    clsProtocolistTextVar field;
    field.Texts({L"kept"});
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.Texts(), std::vector<std::wstring>{L"kept"});
}

TEST_F(ListTextVarTest, EntriesOrTextsOutsideTheImageRaiseSubscriptError) {
    Bytes entriesCut{3, 0, 3, 0, 1, 0, 0, 0, 0, 0, 4, 0, 16, 0, 1, 0};
    clsProtocolistTextVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(entriesCut, 0); }), err::SubscriptOutOfRange);
    Bytes offsetOut{3, 0, 3, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0x00, 0x10, 1, 0, 'A', 0};
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(offsetOut, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.Texts(), std::vector<std::wstring>{L""});
}

TEST_F(ListTextVarTest, ReplicaCopiesEveryTextIntoANewListAndClonesTheOperand) {
    clsProtocolistTextVar field;
    field.StartPosition(9);
    field.IsSelected(true);
    field.IsCanceled(true);
    field.AlignmentStringSize(4);
    field.Texts({L"x", L"yy"});
    field.DefaultDisplay(1);
    linkOperand(*field.LikedOperand(), 5, 6);
    auto replica = std::dynamic_pointer_cast<clsProtocolistTextVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->StartPosition(), 9);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_TRUE(replica->IsCanceled());
    EXPECT_EQ(replica->AlignmentStringSize(), 4);
    EXPECT_EQ(replica->Texts(), (std::vector<std::wstring>{L"x", L"yy"}));
    EXPECT_EQ(replica->DefaultDisplay(), 1);
    EXPECT_EQ(replica->Length(), 4);
    EXPECT_NE(replica->LikedOperand().get(), field.LikedOperand().get());
    EXPECT_EQ(replica->LikedOperand()->OperandAddress(), 6);
    replica->Texts({L"other"});
    EXPECT_EQ(field.Texts(), (std::vector<std::wstring>{L"x", L"yy"}));
}

TEST_F(ListTextVarTest, FindOnlyAndReplaceWorkOnTheLinkedOperand) {
    clsProtocolistTextVar field;
    OperandCollection none;
    field.AddOperandsToFindOnlyCollection(none);
    EXPECT_EQ(none.Count(), 0);
    linkOperand(*field.LikedOperand(), 3, 70);
    OperandCollection found;
    field.AddOperandsToFindOnlyCollection(found);
    ASSERT_EQ(found.Count(), 1);
    EXPECT_EQ(found.Item(L"1").get(), field.LikedOperand().get());
    field.ReplaceOperands(0, 3, 70, 71);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 71);
}

}  // namespace
}  // namespace qx
