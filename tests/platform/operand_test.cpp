#include "platform/host/operand.h"

#include <gtest/gtest.h>

#include "platform/host/host_context.h"

namespace qx {
namespace {

TEST(Operand, StartsUnlinked) {
    ScopedHostContext context;
    clsOperand op;
    EXPECT_TRUE(op.IsNew());
    EXPECT_EQ(op.OperandAddress(), -1);
    EXPECT_EQ(op.OperandDisplayName(), L"");
    EXPECT_FALSE(op.IsRegistered());
}

TEST(Operand, RegisterAndReleaseGoThroughTheHostTable) {
    ScopedHostContext context;
    clsOperand op;
    op.OperandType(3);
    op.OperandAddress(5);
    op.RegisterOperand();
    EXPECT_TRUE(op.IsRegistered());
    EXPECT_EQ(context->Operands.LinkCount(3, 5), 1);
    op.ReleaseOperand();
    EXPECT_FALSE(op.IsRegistered());
}

TEST(Operand, PickerChoiceLinksAndRegisters) {
    ScopedHostContext context;
    context->Script()->QueuePick(OperandChoice{1, 3, 12, 0, L"speed"});
    clsOperand op;
    op.EditOperand();
    EXPECT_FALSE(op.IsEditCanceled());
    EXPECT_FALSE(op.IsNew());
    EXPECT_EQ(op.OperandType(), 3);
    EXPECT_EQ(op.OperandAddress(), 12);
    EXPECT_EQ(op.OperandDescription(), L"speed");
    EXPECT_EQ(op.OperandDisplayName(), L"MI 12");
    EXPECT_TRUE(op.IsRegistered());
}

TEST(Operand, CanceledPickerLeavesTheLinkAsItWas) {
    ScopedHostContext context;
    context->Script()->QueuePickCancel();
    clsOperand op;
    op.OperandType(1);
    op.EditOperand();
    EXPECT_TRUE(op.IsEditCanceled());
    EXPECT_TRUE(op.IsNew());
    EXPECT_EQ(op.OperandAddress(), -1);
}

TEST(Operand, UnscriptedPickerCancels) {
    ScopedHostContext context;
    clsOperand op;
    op.EditOperand();
    EXPECT_TRUE(op.IsEditCanceled());
}

TEST(Operand, ConstantGetsAnAddressInTheConstantTable) {
    ScopedHostContext context;
    context->Script()->QueuePick(OperandChoice{2, 37, -1, 0, L"", 70000});
    clsOperand op;
    op.EditOperand();
    EXPECT_GE(op.OperandAddress(), 1);
    EXPECT_EQ(context->Operands.ConstantValue(op.OperandAddress()), 70000);
    EXPECT_EQ(op.OperandValueText(), L"7");
}

TEST(Operand, StateArrayCopiesEverythingButModeAndFormat) {
    ScopedHostContext context;
    clsOperand a;
    a.OperandType(5);
    a.OperandAddress(9);
    a.OperandCaption(L"cap");
    a.OperandDescription(L"desc");
    a.IsNew(false);
    a.OperandMode(2);
    a.OperandFormat(3);
    a.AddAllowedType(1, 5, true);
    a.SetConstantList({{0, L"zero"}}, 0);
    clsOperand b;
    b.SetOperandState(a.GetOperandState());
    EXPECT_EQ(b.OperandType(), 5);
    EXPECT_EQ(b.OperandAddress(), 9);
    EXPECT_EQ(b.OperandCaption(), L"cap");
    EXPECT_EQ(b.OperandDescription(), L"desc");
    EXPECT_FALSE(b.IsNew());
    EXPECT_EQ(b.AllowedTypes(), a.AllowedTypes());
    EXPECT_EQ(b.ConstantList(), a.ConstantList());
    EXPECT_EQ(b.OperandMode(), 1);
    EXPECT_EQ(b.OperandFormat(), 0);
}

TEST(Operand, AllowedTypesAreRecordedInOrder) {
    ScopedHostContext context;
    clsOperand op;
    op.AddAllowedType(1, 3, true);
    op.AddAllowedType(2, 37, true);
    EXPECT_TRUE(op.IsTypeAllowed(2, 37));
    EXPECT_FALSE(op.IsTypeAllowed(1, 37));
    op.ClearAllowedTypes();
    EXPECT_TRUE(op.AllowedTypes().empty());
}

TEST(Operand, AllowedTypesBeyondTheInlineOnesKeepTheirOrder) {
    ScopedHostContext context;
    clsOperand op;
    std::vector<AllowedType> expected;
    for (int32_t t = 1; t <= 20; ++t) {
        op.AddAllowedType(1, t, t % 2 == 0);
        expected.push_back({1, t, t % 2 == 0});
    }
    EXPECT_EQ(op.AllowedTypes(), expected);
    EXPECT_TRUE(op.IsTypeAllowed(1, 20));
    EXPECT_FALSE(op.IsTypeAllowed(1, 19));
    EXPECT_TRUE(op.IsTypeAllowed(1, 2));

    // The state array carries all of them to a clone.
    clsOperand copy;
    copy.SetOperandState(op.GetOperandState());
    EXPECT_EQ(copy.AllowedTypes(), expected);

    op.ClearAllowedTypes();
    EXPECT_TRUE(op.AllowedTypes().empty());
    EXPECT_FALSE(op.IsTypeAllowed(1, 20));
    op.AddAllowedType(2, 37, true);
    EXPECT_EQ(op.AllowedTypes(), (std::vector<AllowedType>{{2, 37, true}}));
}

TEST(Operand, TheLatestEntryOfATypeDecides) {
    ScopedHostContext context;
    clsOperand op;
    op.AddAllowedType(1, 3, false);
    op.AddAllowedType(1, 3, true);
    EXPECT_TRUE(op.IsTypeAllowed(1, 3));
    op.AddAllowedType(1, 3, false);
    EXPECT_FALSE(op.IsTypeAllowed(1, 3));
}

}  // namespace
}  // namespace qx
