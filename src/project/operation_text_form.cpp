#include "project/operation_text_form.h"

#include "inspect/text_form.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx {

namespace {

constexpr int32_t SerialFamily = 170100;
constexpr int32_t TcpIpFamily = 170200;
constexpr int32_t ScanMethod = 2;
constexpr int32_t SendMethod = 3;

template <class Set>
std::string textOf(Set& set, const Bytes& image) {
    set.BinaryData(image);
    if constexpr (std::is_base_of_v<clsProtocolSendSrv, Set>)
        return textform::exportSendSet(set);
    else
        return textform::exportScanSet(set);
}

}  // namespace

MessageSetKind messageSetKindOf(const StoredOperation& operation) {
    const int32_t family = operation.FatherID();
    if (family != SerialFamily && family != TcpIpFamily) return MessageSetKind::None;
    switch (operation.MethodID - family) {
        case SendMethod:
            return MessageSetKind::Send;
        case ScanMethod:
            return MessageSetKind::Scan;
        default:
            return MessageSetKind::None;
    }
}

std::optional<std::string> textFormOf(const StoredOperation& operation, bool extendedOperands) {
    const MessageSetKind kind = messageSetKindOf(operation);
    if (kind == MessageSetKind::None) return std::nullopt;
    // The set registers its operands with the host it is read in: one of its
    // own, so that the caller's host sees nothing of it.
    ScopedHostContext host;
    host->ExtendedOperands = extendedOperands;
    const bool tcpIp = operation.FatherID() == TcpIpFamily;
    try {
        if (kind == MessageSetKind::Send) {
            if (tcpIp) {
                clsEthProtocolSendSrv set;
                return textOf(set, operation.BinaryOperands);
            }
            clsProtocolSendSrv set;
            return textOf(set, operation.BinaryOperands);
        }
        if (tcpIp) {
            clsEthProtocolScanSrv set;
            return textOf(set, operation.BinaryOperands);
        }
        clsProtocolScanSrv set;
        return textOf(set, operation.BinaryOperands);
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

}  // namespace qx
