#include "framework/shared_helpers.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

OperandPtr makeOperand(int32_t type, int32_t address, bool isNew, const std::wstring& description = L"") {
    OperandPtr operand = newOperand();
    operand->OperandType(type);
    operand->OperandAddress(address);
    operand->IsNew(isNew);
    operand->OperandDescription(description);
    return operand;
}

TEST(IsConstantOperandType, IsTrueForExactlyTheFiveConstantTypes) {
    ScopedHostContext context;
    for (int32_t type : {15, 34, 35, 37, 38}) EXPECT_TRUE(IsConstantOperandType(type)) << type;
    for (int32_t type : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 14, 16, 33, 36, 39, 64, 65, 66, 67})
        EXPECT_FALSE(IsConstantOperandType(type)) << type;
}

TEST(GetOperandDisplayText, UnlinkedMemoryOperandShowsNothing) {
    ScopedHostContext context;
    EXPECT_EQ(GetOperandDisplayText(*makeOperand(3, 5, true, L"Speed")), L"");
    EXPECT_EQ(GetOperandDisplayText(*makeOperand(1, -1, true)), L"");
}

TEST(GetOperandDisplayText, UnlinkedLiteralConstantStillShowsHashAndValue) {
    ScopedHostContext context;
    OperandPtr constant = makeOperand(37, 2, true);
    constant->OperandFormat(3);
    constant->OperandConstantValue(70000);
    EXPECT_EQ(GetOperandDisplayText(*constant), L"#7");
}

TEST(GetOperandDisplayText, LinkedMemoryOperandShowsTypeNameAddressAndSymbol) {
    ScopedHostContext context;
    EXPECT_EQ(GetOperandDisplayText(*makeOperand(3, 5, false, L"Speed")), L"MI 5 : Speed");
    EXPECT_EQ(GetOperandDisplayText(*makeOperand(1, 12, false)), L"MB 12 : ");
}

TEST(GetOperandDisplayText, NamedConstantsShowValueSeparatorAndDescription) {
    ScopedHostContext context;
    for (int32_t type : {34, 35}) {
        OperandPtr constant = makeOperand(type, 4, false, L"Limit");
        constant->OperandFormat(3);
        constant->OperandConstantValue(120000);
        EXPECT_EQ(GetOperandDisplayText(*constant), L"12 : Limit") << type;
    }
}

TEST(GetOperandDisplayText, LongLiteralConstantShowsHashAndValue) {
    ScopedHostContext context;
    OperandPtr constant = makeOperand(38, 4, false, L"ignored");
    constant->OperandFormat(3);
    constant->OperandConstantValue(-50000);
    EXPECT_EQ(GetOperandDisplayText(*constant), L"#-5");
}

TEST(GetOperandDisplayText, TypeFifteenFallsIntoTheNameAndAddressBranchEvenWhenUnlinked) {
    ScopedHostContext context;
    EXPECT_EQ(GetOperandDisplayText(*makeOperand(15, 3, true, L"Table")), L"K 3 : Table");
}

TEST(CloneOperand, CopiesIdentityAndStateIntoAnObjectOfItsOwn) {
    ScopedHostContext context;
    OperandPtr original = makeOperand(5, 40, false, L"Counter");
    original->OperandNetID(2);
    original->OperandCaption(L"Copy to");
    original->AddAllowedType(1, 5, true);
    original->OperandMode(1);
    original->OperandFormat(3);
    original->HasValue(true);
    OperandPtr copy = CloneOperand(*original);
    ASSERT_NE(copy, original);
    EXPECT_EQ(copy->OperandType(), 5);
    EXPECT_EQ(copy->OperandAddress(), 40);
    EXPECT_EQ(copy->OperandNetID(), 2);
    EXPECT_EQ(copy->OperandDescription(), L"Counter");
    EXPECT_EQ(copy->OperandCaption(), L"Copy to");
    EXPECT_FALSE(copy->IsNew());
    EXPECT_TRUE(copy->HasValue());
    EXPECT_EQ(copy->AllowedTypes(), original->AllowedTypes());
    EXPECT_EQ(copy->OperandMode(), 1);
    EXPECT_EQ(copy->OperandFormat(), 3);
    copy->OperandAddress(41);
    copy->OperandDescription(L"Other");
    EXPECT_EQ(original->OperandAddress(), 40);
    EXPECT_EQ(original->OperandDescription(), L"Counter");
}

TEST(CloneOperand, UnregisteredLinkTakesModeAndFormatFromTheOriginal) {
    ScopedHostContext context;
    OperandPtr original = makeOperand(37, 9, false);
    original->OperandMode(2);
    original->OperandFormat(2);
    OperandPtr copy = CloneOperand(*original);
    EXPECT_EQ(copy->OperandMode(), 2);
    EXPECT_EQ(copy->OperandFormat(), 2);
}

TEST(CloneOperand, RegisteredLinkKeepsModeAndFormatOfTheHostsTable) {
    ScopedHostContext context;
    context->Operands.Register(3, 7, 1, 1);
    OperandPtr original = makeOperand(3, 7, false);
    original->OperandMode(2);
    original->OperandFormat(3);
    OperandPtr copy = CloneOperand(*original);
    EXPECT_EQ(copy->OperandMode(), 1);
    EXPECT_EQ(copy->OperandFormat(), 1);
}

TEST(EditOperandChecked, PickingAnotherOperandReleasesTheOldLinkThroughAStandAloneCopy) {
    ScopedHostContext context;
    context->Operands.Register(3, 5, 1, 3);
    OperandPtr operand = makeOperand(3, 5, false);
    OperandPtr same = operand;
    context->Script()->QueuePick(OperandChoice{1, 3, 6, 0, L"New"});
    EditOperandChecked(operand);
    EXPECT_EQ(operand, same);
    EXPECT_EQ(operand->OperandAddress(), 6);
    EXPECT_EQ(context->Operands.LinkCount(3, 5), 0);
    EXPECT_EQ(context->Operands.LinkCount(3, 6), 1);
}

TEST(EditOperandChecked, PickingTheSameOperandAgainReleasesNothing) {
    ScopedHostContext context;
    context->Operands.Register(3, 5, 1, 3);
    OperandPtr operand = makeOperand(3, 5, false);
    context->Script()->QueuePick(OperandChoice{1, 3, 5, 0, L"Same"});
    EditOperandChecked(operand);
    // The picker registered the link again; nothing was released.
    EXPECT_EQ(context->Operands.LinkCount(3, 5), 2);
}

TEST(EditOperandChecked, ChangeOfNetworkOnlyAlsoReleasesTheOldLink) {
    ScopedHostContext context;
    context->Operands.Register(3, 5, 1, 3);
    OperandPtr operand = makeOperand(3, 5, false);
    context->Script()->QueuePick(OperandChoice{1, 3, 5, 1, L""});
    EditOperandChecked(operand);
    EXPECT_EQ(operand->OperandNetID(), 1);
    // Registered once by the picker, released once for the old identity.
    EXPECT_EQ(context->Operands.LinkCount(3, 5), 1);
}

TEST(EditOperandChecked, CanceledPickerReleasesNothingAndLeavesTheLink) {
    ScopedHostContext context;
    context->Operands.Register(3, 5, 1, 3);
    OperandPtr operand = makeOperand(3, 5, false, L"Speed");
    context->Script()->QueuePickCancel();
    EditOperandChecked(operand);
    EXPECT_TRUE(operand->IsEditCanceled());
    EXPECT_EQ(operand->OperandAddress(), 5);
    EXPECT_EQ(context->Operands.LinkCount(3, 5), 1);
}

TEST(EditOperandChecked, ConstantTypeEntersThePickerInConstantMode) {
    ScopedHostContext context;
    OperandPtr operand = makeOperand(37, -1, true);
    operand->OperandMode(1);
    int32_t modeSeen = 0;
    context->Script()->QueuePick([&](clsOperand& picked) {
        modeSeen = picked.OperandMode();
        return false;
    });
    EditOperandChecked(operand);
    EXPECT_EQ(modeSeen, 2);
}

TEST(EditOperandChecked, MemoryTypeKeepsItsModeForThePicker) {
    ScopedHostContext context;
    OperandPtr operand = makeOperand(3, -1, true);
    operand->OperandMode(1);
    int32_t modeSeen = 0;
    context->Script()->QueuePick([&](clsOperand& picked) {
        modeSeen = picked.OperandMode();
        return false;
    });
    EditOperandChecked(operand);
    EXPECT_EQ(modeSeen, 1);
}

TEST(EditOperandChecked, NoOperandIsAnObjectNotSetError) {
    ScopedHostContext context;
    OperandPtr none;
    try {
        EditOperandChecked(none);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), 91);
    }
}

TEST(IsExtendedOperandsEnabled, FollowsTheHostsEnvironmentAtEveryCall) {
    ScopedHostContext context;
    EXPECT_FALSE(IsExtendedOperandsEnabled());
    context->ExtendedOperands = true;
    EXPECT_TRUE(IsExtendedOperandsEnabled());
    context->ExtendedOperands = false;
    EXPECT_FALSE(IsExtendedOperandsEnabled());
}

TEST(GetDialogIcon, GivesThePictureOfTheHostsPictureTable) {
    ScopedHostContext context;
    PicturePtr icon = GetDialogIcon(302);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->Width, 16);
    EXPECT_EQ(icon->Height, 16);
    ASSERT_FALSE(icon->Pixels.empty());
    EXPECT_EQ(icon->Pixels[0], 302 & 0xFF);
}

TEST(GetDpiScale, IsPixelsPerInchOver96OnEachAxis) {
    ScopedHostContext context;
    EXPECT_FLOAT_EQ(GetDpiScaleX(), 1.0f);
    EXPECT_FLOAT_EQ(GetDpiScaleY(), 1.0f);
    context->DpiX = 120;
    context->DpiY = 144;
    EXPECT_FLOAT_EQ(GetDpiScaleX(), 1.25f);
    EXPECT_FLOAT_EQ(GetDpiScaleY(), 1.5f);
}

TEST(GetEndOfMessageText, NamesTheThreeEndsAndNothingElse) {
    ScopedHostContext context;
    EXPECT_EQ(GetEndOfMessageText(1), L"ETX");
    EXPECT_EQ(GetEndOfMessageText(2), L"Checksum & ETX");
    EXPECT_EQ(GetEndOfMessageText(3), L"ETX & Checksum");
    EXPECT_EQ(GetEndOfMessageText(0), L"");
    EXPECT_EQ(GetEndOfMessageText(4), L"");
    EXPECT_EQ(GetEndOfMessageText(-1), L"");
}

TEST(GetDateFormatText, NamesFormatsTwoToSevenAndNothingElse) {
    ScopedHostContext context;
    EXPECT_EQ(GetDateFormatText(2), L"DDD");
    EXPECT_EQ(GetDateFormatText(3), L"DDDDDDDDD");
    EXPECT_EQ(GetDateFormatText(4), L"DD/MM");
    EXPECT_EQ(GetDateFormatText(5), L"MM/DD");
    EXPECT_EQ(GetDateFormatText(6), L"DD/MM/YY");
    EXPECT_EQ(GetDateFormatText(7), L"MM/DD/YY");
    EXPECT_EQ(GetDateFormatText(0), L"");
    EXPECT_EQ(GetDateFormatText(1), L"");
    EXPECT_EQ(GetDateFormatText(8), L"");
}

TEST(GetTimeFormatText, NamesFormatsZeroAndOneAndNothingElse) {
    ScopedHostContext context;
    EXPECT_EQ(GetTimeFormatText(0), L"HH:MM");
    EXPECT_EQ(GetTimeFormatText(1), L"HH:MM:SS");
    EXPECT_EQ(GetTimeFormatText(2), L"");
    EXPECT_EQ(GetTimeFormatText(-1), L"");
}

TEST(CopyByteCounts, AWordRegisterTakesOneOrTwoBytesALongOneAlsoFourOthersNone) {
    for (int32_t type : {3, 65}) EXPECT_EQ(copyByteCountsFor(type), (std::vector<int32_t>{1, 2})) << type;
    for (int32_t type : {5, 16, 66, 67}) EXPECT_EQ(copyByteCountsFor(type), (std::vector<int32_t>{1, 2, 4})) << type;
    for (int32_t type : {0, 1, 4, 7, 37, 64}) EXPECT_TRUE(copyByteCountsFor(type).empty()) << type;
}

}  // namespace
}  // namespace qx
