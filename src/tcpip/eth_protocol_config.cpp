#include "tcpip/eth_protocol_config.h"

#include "framework/runtime_catalogue.h"
#include "tcpip/frm_eth_protocol_config.h"

namespace qx {

namespace {
constexpr int32_t socketTextNumber = 26;
constexpr int32_t constantMode = 2;
constexpr int32_t socketType = 37;
constexpr int32_t socketTypeSigned = 34;
constexpr int32_t decimalFormat = 3;
constexpr int32_t constantListOnlyMode = 1;

FBMethodInfo ethConfigInfo() {
    return FBMethodInfo{
        .MethodNumber = 1,
        .Title = L"CONFIG",
        .Description =
            L"Each operation is linked to a Configuration, which determines which Socket is used for Send "
            L"and Scan operations",
        .MethodNameText = 203,
        .VisbleInCout = 1,
        .VisbleOutCout = 1,
        .HasBinaryImage = false,
        .AnswersBusBar = true,
        .OutOperandSpecs =
            {{.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 34, .Visible = true}},
    };
}

const std::vector<std::pair<int32_t, std::wstring>>& socketList() {
    static const std::vector<std::pair<int32_t, std::wstring>> list{
        {0, L"Socket 0 Default: UDP (20000), PLC MODBUS Network"},
        {1, L"Socket 1 Default: TCP (20256), Rungmere etc."},
        {2, L"Socket 2 Default: TCP (502), MODBUS slave"},
        {3, L"Socket 3 Default: TCP (20257), slave"},
    };
    return list;
}
}  // namespace

clsEthProtocolConfig::clsEthProtocolConfig() : FBMethodBase(ethConfigInfo()) {}

void clsEthProtocolConfig::itfFBMethod_CreateDummyOperands() {
    FBMethodBase::itfFBMethod_CreateDummyOperands();
    OperandPtr socket = newOperand();
    socket->IsNew(true);
    socket->OperandMode(constantMode);
    socket->OperandType(socketType);
    int32_t address = 0;
    socket->AllocateConstantAddress(address);
    socket->OperandAddress(address);
    socket->OperandConstantValue(0);
    socket->OperandDescription(L"Socket 0");
    socket->OperandFormat(decimalFormat);
    socket->OperandConstantListOnly(true);
    socket->RegisterConstant();
    inOperands_->Add(socket, L"1");
    visbleInOperands_->Add(socket);
}

void clsEthProtocolConfig::itfFBMethod_BuildOperands() {
    FBMethodBase::itfFBMethod_BuildOperands();
    OperandCollectionPtr in = itfFBMethod_InOperands();
    if (!in) raiseError(err::InvalidProcedureCall);
    OperandPtr socket = in->Item(1);
    if (!socket) raiseError(err::ObjectNotSet);
    socket->ClearAllowedTypes();
    socket->AddAllowedType(constantMode, socketType, true);
    socket->AddAllowedType(constantMode, socketTypeSigned, true);
    socket->OperandConstantListMode(constantListOnlyMode);
    socket->SetConstantList(socketList(), 0);
    socket->OperandConstantListOnly(true);
    std::wstring text = GetText(socketTextNumber);
    socket->OperandCaption(text);
    socket->OperandTitle(text);
    visbleInOperands_->Add(socket);
}

void clsEthProtocolConfig::itfFBMethod_FatherInstanceNum(int32_t value) {
    FBMethodBase::itfFBMethod_FatherInstanceNum(value);
    Bytes data;
    if (Instances()) Instances()->GetInstanceData(value, data);
    instanceData_ = std::move(data);
}

void clsEthProtocolConfig::itfFBMethod_EditOperands() {
    OperandCollectionPtr findOnly;
    {
        frmEthProtocolConfig dialog;
        dialog.EditOperands(*this, Instances(), findOnly);
    }
    if (itfFBMethod_IsCanceled()) return;
    setIsNew(false);
    operandsForFindOnly_ = std::move(findOnly);
}

}  // namespace qx
