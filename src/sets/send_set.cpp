#include "sets/send_set.h"

#include <string>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "message/editor_hooks.h"
#include "message/field_state.h"
#include "message/protocol_cs_var.h"
#include "sets/send_image.h"
#include "sets/set_editor_hooks.h"

namespace qx {

namespace {

// Captions of the operand slots in the host's picker.
constexpr int32_t kMessageNumberText = 28;
constexpr int32_t kCopyDestinationText = 28;
constexpr int32_t kCopyDoneText = 30;

constexpr int32_t kMemoryMode = 1;
constexpr int32_t kConstantMode = 2;

OperandPtr newSetOperand(int32_t mode, int32_t operandType, int32_t textNumber) {
    auto operand = newOperand();
    operand->OperandMode(mode);
    operand->OperandType(operandType);
    operand->IsNew(true);
    std::wstring caption = GetText(textNumber);
    operand->OperandCaption(caption);
    operand->OperandTitle(caption);
    return operand;
}

}  // namespace

clsProtocolSendSrv::clsProtocolSendSrv() : clsProtocolSendSrv(SetFamily::Serial) {}

clsProtocolSendSrv::clsProtocolSendSrv(SetFamily family)
    : family_(family), messages_(method_type::Send), sendChecksum_(std::make_shared<clsProtocolCSVar>()) {
    createOperands();
}

void clsProtocolSendSrv::createOperands() {
    bool extended = IsExtendedOperandsEnabled();
    bool ethernet = family_ == SetFamily::Ethernet;

    opMessageNumber_ = newSetOperand(kConstantMode, 37, kMessageNumberText);
    opMessageNumber_->AddAllowedType(kMemoryMode, 3, true);
    if (extended && !ethernet) opMessageNumber_->AddAllowedType(kMemoryMode, 65, true);
    opMessageNumber_->AddAllowedType(kConstantMode, 34, true);
    opMessageNumber_->AddAllowedType(kConstantMode, 37, true);
    if (extended && ethernet) opMessageNumber_->AddAllowedType(kMemoryMode, 65, true);

    opCopyDestination_ = newSetOperand(kMemoryMode, 3, kCopyDestinationText);
    for (int32_t type : {3, 5, 16}) opCopyDestination_->AddAllowedType(kMemoryMode, type, true);
    if (extended)
        for (int32_t type : {65, 66, 67}) opCopyDestination_->AddAllowedType(kMemoryMode, type, true);

    opCopyWhenOn_ = newSetOperand(kMemoryMode, 1, kCopyDoneText);
    opCopyWhenOn_->AddAllowedType(kMemoryMode, 1, true);
    if (extended && ethernet) opCopyWhenOn_->AddAllowedType(kMemoryMode, 64, true);
}

void clsProtocolSendSrv::EditAdvanced() {
    int32_t count = copyBytesCount_;
    bool confirmed = false;
    runSendAdvancedEditor(opCopyDestination_, opCopyWhenOn_, count, confirmed);
    if (confirmed) copyBytesCount_ = count;
}

void clsProtocolSendSrv::ClearAll() {
    messages_.ClearAll();
    if (OnMessagesCleared) OnMessagesCleared();
}

Bytes clsProtocolSendSrv::BinaryData() { return writeSendImage(*this, family_ == SetFamily::Serial); }

void clsProtocolSendSrv::BinaryData(const Bytes& value) { readSendImage(*this, value); }

bool clsProtocolSendSrv::Edit(itfFBMethod& pFBMethod, InstancesPtr pFBInstances) {
    SetHostObjects(&pFBMethod, pFBInstances);
    bool confirmed = false;
    // Each family has its own dialog: the TCP/IP one has no framing.
    if (family_ == SetFamily::Ethernet)
        runEthSendEditor(static_cast<clsEthProtocolSendSrv&>(*this), pFBMethod, std::move(pFBInstances), confirmed);
    else
        runSendEditor(*this, pFBMethod, std::move(pFBInstances), confirmed);
    // The set keeps no reference to the host beyond its edit.
    SetHostObjects(nullptr, nullptr);
    if (confirmed) {
        OperandCollectionPtr findOnly = pFBMethod.itfFBMethod_OperandsForFindOnly();
        if (findOnly) AddOperandsToFindOnly(*findOnly);
    }
    return confirmed;
}

void clsProtocolSendSrv::ShowHelp() { hostObjects_.ShowHelp(); }

void clsProtocolSendSrv::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) {
    messages_.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    for (const auto& operand : {opMessageNumber_, opCopyWhenOn_, opCopyDestination_})
        replaceOperandAddress(*operand, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

void clsProtocolSendSrv::EditSendETXAdvanced() { editEndOfMessageOnReplica(sendChecksum_, endOfSendMessageType_); }

void clsProtocolSendSrv::ClearSendETX() {
    sendETXChars_.fill(FrameChar{});
    endOfSendMessageType_ = 1;
}

void clsProtocolSendSrv::ClearSendSTX() { sendSTXChars_.fill(FrameChar{}); }

void clsProtocolSendSrv::SetSendETXValue(int32_t pIndex, uint8_t pValue, bool pETXByAscii) {
    setFrameChar(sendETXChars_, pIndex, pValue, pETXByAscii);
}

void clsProtocolSendSrv::SetSendSTXValue(int32_t pIndex, uint8_t pValue, bool pSTXByAscii) {
    setFrameChar(sendSTXChars_, pIndex, pValue, pSTXByAscii);
}

void clsProtocolSendSrv::SetHostObjects(itfFBMethod* pFBMethod, InstancesPtr pFBInstances) {
    hostObjects_ = EditHostObjects{pFBMethod, std::move(pFBInstances)};
}

void clsProtocolSendSrv::AddOperandsToFindOnly(OperandCollection& pOperandsForFindOnly) const {
    for (const auto& operand : {opMessageNumber_, opCopyDestination_, opCopyWhenOn_})
        addLinkedOperand(pOperandsForFindOnly, operand);
    messages_.AddOperandsToFindOnlyCollection(pOperandsForFindOnly);
}

}  // namespace qx
