#include "sets/set_editor_hooks.h"

#include <string>

#include "platform/basics/runtime_error.h"

namespace qx {

MessageEditorHooks& messageEditorHooks() {
    static MessageEditorHooks hooks;
    return hooks;
}

namespace {

// The hook when one is installed; otherwise error 91, whose description says
// what is missing and how to install it.
template <class Hook>
const Hook& installed(const Hook& hook, const std::wstring& dialog, const std::wstring& editing,
                      const std::wstring& member) {
    if (!hook)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No " + dialog +
                               L" is installed: a program that links QxFBCom2::core itself must call "
                               L"qx::installMessageEditors() from editors/message_editors.h once before " +
                               editing + L", or set qx::messageEditorHooks()." + member + L" to an editor of its own.");
    return hook;
}

}  // namespace

void runSendAdvancedEditor(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
                           bool& pConfirmed) {
    const SendAdvancedEditor& editor = installed(messageEditorHooks().SendAdvanced, L"Send advanced dialog",
                                                 L"editing the copy after the ETX", L"SendAdvanced");
    editor(std::move(pOpCopyDestination), std::move(pOpCopyWhenOn), pCopyBytesCount, pConfirmed);
}

void runEthSendEditor(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                      bool& pConfirmed) {
    const EthSendEditor& editor = installed(messageEditorHooks().EthSendEdit, L"TCP/IP Send dialog",
                                            L"editing a TCP/IP Send operation", L"EthSendEdit");
    editor(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void runSendEditor(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed) {
    const SendEditor& editor =
        installed(messageEditorHooks().SendEdit, L"Send dialog", L"editing a Send operation", L"SendEdit");
    editor(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void runScanEditor(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed) {
    const ScanEditor& editor =
        installed(messageEditorHooks().ScanEdit, L"Scan dialog", L"editing a Scan operation", L"ScanEdit");
    editor(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void runEthScanEditor(clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                      bool& pConfirmed) {
    const EthScanEditor& editor = installed(messageEditorHooks().EthScanEdit, L"TCP/IP Scan dialog",
                                            L"editing a TCP/IP Scan operation", L"EthScanEdit");
    editor(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

}  // namespace qx
