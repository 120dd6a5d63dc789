#include "sets/set_editor_hooks.h"

#include "platform/basics/runtime_error.h"

namespace qx {

MessageEditorHooks& messageEditorHooks() {
    static MessageEditorHooks hooks;
    return hooks;
}

void runSendAdvancedEditor(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
                           bool& pConfirmed) {
    const SendAdvancedEditor& editor = messageEditorHooks().SendAdvanced;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No Send advanced dialog is installed: a program that links QxFBCom2::core itself must "
                           L"call qx::installMessageEditors() from editors/message_editors.h once before editing the "
                           L"copy after the ETX, or set qx::messageEditorHooks().SendAdvanced to an editor of its "
                           L"own.");
    editor(std::move(pOpCopyDestination), std::move(pOpCopyWhenOn), pCopyBytesCount, pConfirmed);
}

void runEthSendEditor(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                      bool& pConfirmed) {
    const EthSendEditor& editor = messageEditorHooks().EthSendEdit;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No TCP/IP Send dialog is installed: a program that links QxFBCom2::core itself must call "
                           L"qx::installMessageEditors() from editors/message_editors.h once before editing a TCP/IP "
                           L"Send operation, or set qx::messageEditorHooks().EthSendEdit to an editor of its own.");
    editor(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void runSendEditor(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed) {
    const SendEditor& editor = messageEditorHooks().SendEdit;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No Send dialog is installed: a program that links QxFBCom2::core itself must call "
                           L"qx::installMessageEditors() from editors/message_editors.h once before editing a Send "
                           L"operation, or set qx::messageEditorHooks().SendEdit to an editor of its own.");
    editor(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void runScanEditor(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed) {
    const ScanEditor& editor = messageEditorHooks().ScanEdit;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No Scan dialog is installed: a program that links QxFBCom2::core itself must call "
                           L"qx::installMessageEditors() from editors/message_editors.h once before editing a Scan "
                           L"operation, or set qx::messageEditorHooks().ScanEdit to an editor of its own.");
    editor(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

}  // namespace qx
