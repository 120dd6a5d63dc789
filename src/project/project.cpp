#include "project/project.h"

namespace qx {

StoredOperand storeOperand(const clsOperand& operand, const std::wstring& key) {
    StoredOperand stored;
    stored.Key = key;
    stored.Caption = operand.OperandCaption();
    stored.Title = operand.OperandTitle();
    stored.Description = operand.OperandDescription();
    stored.IsNew = operand.IsNew();
    stored.Mode = operand.OperandMode();
    stored.Type = operand.OperandType();
    stored.NetID = operand.OperandNetID();
    stored.Address = operand.OperandAddress();
    stored.HasValue = operand.HasValue();
    stored.ConstantValue = operand.OperandConstantValue();
    stored.Format = operand.OperandFormat();
    stored.ConstantListMode = operand.OperandConstantListMode();
    stored.ConstantListOnly = operand.OperandConstantListOnly();
    stored.VectorLength = operand.OperandVectorLength();
    stored.AllowedTypes = operand.AllowedTypes();
    stored.ConstantList = operand.ConstantList();
    return stored;
}

void restoreOperand(const StoredOperand& stored, clsOperand& operand) {
    operand.OperandCaption(stored.Caption);
    operand.OperandTitle(stored.Title);
    operand.OperandDescription(stored.Description);
    operand.IsNew(stored.IsNew);
    operand.OperandMode(stored.Mode);
    operand.OperandType(stored.Type);
    operand.OperandNetID(stored.NetID);
    operand.OperandAddress(stored.Address);
    operand.HasValue(stored.HasValue);
    operand.OperandConstantValue(stored.ConstantValue);
    operand.OperandFormat(stored.Format);
    operand.OperandConstantListMode(stored.ConstantListMode);
    operand.OperandConstantListOnly(stored.ConstantListOnly);
    operand.OperandVectorLength(stored.VectorLength);
    operand.ClearAllowedTypes();
    for (const AllowedType& type : stored.AllowedTypes)
        operand.AddAllowedType(type.Mode, type.OperandType, type.Allowed);
    operand.SetConstantList(stored.ConstantList, 0);
}

void storeOperandTable(const OperandTable& table, Project& project) {
    project.Links.clear();
    for (const OperandTable::Link& link : table.Links())
        project.Links.push_back({link.Type, link.Address, link.Link.Mode, link.Link.Format, link.Link.Count});
    project.Constants.clear();
    for (const auto& [address, constant] : table.Constants())
        project.Constants.push_back({address, constant.first, constant.second});
    project.NextConstantAddress = table.NextConstantAddress();
}

void restoreOperandTable(const Project& project, OperandTable& table) {
    for (const StoredLink& link : project.Links)
        table.RestoreLink(link.Type, link.Address, {link.Count, link.Mode, link.Format});
    for (const StoredConstant& constant : project.Constants)
        table.RegisterConstant(constant.Address, constant.Type, constant.Value);
    table.NextConstantAddress(project.NextConstantAddress);
}

}  // namespace qx
