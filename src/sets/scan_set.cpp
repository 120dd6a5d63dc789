#include "sets/scan_set.h"

#include <utility>

#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "sets/scan_image.h"
#include "sets/set_editor_hooks.h"

namespace qx {

clsProtocolScanSrv::clsProtocolScanSrv() : clsProtocolScanSrv(SetFamily::Serial) {}

clsProtocolScanSrv::clsProtocolScanSrv(SetFamily family)
    : family_(family),
      messages_(method_type::Scan),
      messageLengthValue_(family == SetFamily::Serial ? 1 : 0),
      scanChecksum_(std::make_shared<clsProtocolCSVar>()) {}

Bytes clsProtocolScanSrv::BinaryData() { return writeScanImage(*this); }

void clsProtocolScanSrv::BinaryData(const Bytes& value) { readScanImage(*this, value); }

bool clsProtocolScanSrv::Edit(itfFBMethod& pFBMethod, InstancesPtr pFBInstances) {
    SetHostObjects(&pFBMethod, pFBInstances);
    bool confirmed = false;
    // Each family has its own dialog: the TCP/IP one has no framing.
    if (family_ == SetFamily::Ethernet)
        runEthScanEditor(static_cast<clsEthProtocolScanSrv&>(*this), pFBMethod, std::move(pFBInstances), confirmed);
    else
        runScanEditor(*this, pFBMethod, std::move(pFBInstances), confirmed);
    // The set keeps no reference to the host beyond its edit.
    SetHostObjects(nullptr, nullptr);
    if (confirmed) {
        OperandCollectionPtr findOnly = pFBMethod.itfFBMethod_OperandsForFindOnly();
        if (findOnly) AddOperandsToFindOnly(*findOnly);
    }
    return confirmed;
}

void clsProtocolScanSrv::ShowHelp() { hostObjects_.ShowHelp(); }

void clsProtocolScanSrv::InitScanChecksum() {
    // The end-of-message checksum is always a clsProtocolCSVar; the dialog
    // gives one back in its place.
    if (auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(scanChecksum_)) checksum->InitChecksum();
}

void clsProtocolScanSrv::ClearAll() {
    messages_.ClearAll();
    if (OnMessagesCleared) OnMessagesCleared();
}

void clsProtocolScanSrv::SetScanSTXValue(int32_t pIndex, uint8_t pValue, bool pSTXByAscii) {
    setFrameChar(scanSTXChars_, pIndex, pValue, pSTXByAscii);
}

void clsProtocolScanSrv::SetScanETXValue(int32_t pIndex, uint8_t pValue, bool pETXByAscii) {
    setFrameChar(scanETXChars_, pIndex, pValue, pETXByAscii);
}

void clsProtocolScanSrv::ClearScanSTX() { scanSTXChars_.fill(FrameChar{}); }

void clsProtocolScanSrv::EditScanETXAdvanced() { editEndOfMessageOnReplica(scanChecksum_, endOfScanMessageType_); }

void clsProtocolScanSrv::ClearScanETX() {
    scanETXChars_.fill(FrameChar{});
    endOfScanMessageType_ = 1;
}

void clsProtocolScanSrv::SetHostObjects(itfFBMethod* pFBMethod, InstancesPtr pFBInstances) {
    hostObjects_ = EditHostObjects{pFBMethod, std::move(pFBInstances)};
}

}  // namespace qx
