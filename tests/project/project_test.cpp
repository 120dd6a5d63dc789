#include "project/project.h"

#include <gtest/gtest.h>

namespace qx {
namespace {

TEST(StoredOperand, AnOperandsWholeStateComesBackIntoAFreshOperand) {
    ScopedHostContext context;
    clsOperand operand;
    operand.OperandCaption(L"Socket");
    operand.OperandTitle(L"Socket title");
    operand.OperandDescription(L"the socket");
    operand.IsNew(false);
    operand.OperandMode(2);
    operand.OperandType(34);
    operand.OperandNetID(4);
    operand.OperandAddress(17);
    operand.HasValue(true);
    operand.OperandConstantValue(-5'0000);
    operand.OperandFormat(3);
    operand.OperandConstantListMode(1);
    operand.OperandConstantListOnly(true);
    operand.OperandVectorLength(5);
    for (int32_t type = 1; type <= 14; ++type) operand.AddAllowedType(1, type, type % 2 == 0);
    operand.SetConstantList({{1, L"one"}, {2, L"two"}}, 0);

    const StoredOperand stored = storeOperand(operand, L"3");
    EXPECT_EQ(stored.Key, L"3");
    EXPECT_EQ(stored.AllowedTypes.size(), 14u);
    clsOperand copy;
    restoreOperand(stored, copy);
    EXPECT_EQ(storeOperand(copy, L"3"), stored);
    EXPECT_EQ(copy.OperandMode(), 2);
    EXPECT_EQ(copy.OperandFormat(), 3);
    EXPECT_TRUE(copy.IsTypeAllowed(1, 14));
    EXPECT_FALSE(copy.IsTypeAllowed(1, 13));
    // Restoring is no registration: the host's table is restored as a whole.
    EXPECT_FALSE(context->Operands.IsRegistered(34, 17));
}

TEST(StoredOperand, RestoringReplacesWhatTheOperandAllowedBefore) {
    ScopedHostContext context;
    clsOperand operand;
    operand.AddAllowedType(1, 99, true);
    StoredOperand stored;
    stored.AllowedTypes = {{1, 3, true}};
    restoreOperand(stored, operand);
    EXPECT_FALSE(operand.IsTypeAllowed(1, 99));
    EXPECT_TRUE(operand.IsTypeAllowed(1, 3));
}

TEST(StoredOperandTable, LinksConstantsAndTheNextConstantAddressComeBack) {
    Project project;
    {
        ScopedHostContext context;
        OperandTable& table = context->Operands;
        table.Register(3, 20, 1, 3);
        table.Register(3, 20, 1, 3);
        table.Register(1, 10, 1, 0);
        table.Register(5, 1, 1, 0);
        table.Release(5, 1);  // no longer linked: not saved
        const int32_t address = table.AllocateConstantAddress();
        table.RegisterConstant(address, 34, 7'0000);
        table.Register(34, address, 2, 3);
        storeOperandTable(table, project);
    }
    EXPECT_EQ(project.Links, (std::vector<StoredLink>{{1, 10, 1, 0, 1}, {3, 20, 1, 3, 2}, {34, 1, 2, 3, 1}}));
    EXPECT_EQ(project.Constants, (std::vector<StoredConstant>{{1, 34, 7'0000}}));
    EXPECT_EQ(project.NextConstantAddress, 2);

    ScopedHostContext context;
    restoreOperandTable(project, context->Operands);
    EXPECT_EQ(context->Operands.LinkCount(3, 20), 2);
    EXPECT_EQ(context->Operands.LinkCount(5, 1), 0);
    EXPECT_EQ(context->Operands.Find(34, 1)->Mode, 2);
    EXPECT_EQ(context->Operands.ConstantValue(1), 7'0000);
    Project again;
    storeOperandTable(context->Operands, again);
    EXPECT_EQ(again, project);
    EXPECT_EQ(context->Operands.AllocateConstantAddress(), 2);
}

}  // namespace
}  // namespace qx
