// The dialogs of the message editors (the Send and Scan dialogs and the Send
// advanced dialog) lie in the editors layer, above the message sets whose
// operations open them. The sets reach them through the hooks here, which
// installMessageEditors() in editors/message_editors.h fills: the component
// calls it at each class object it hands out, and a program that links the
// core on its own calls it once. It fills only empty hooks, so a host may set
// any hook to a dialog of its own, before or after.
#pragma once
#include <cstdint>
#include <functional>

#include "platform/host/host_contract.h"
#include "platform/host/operand.h"

namespace qx {

class clsProtocolSendSrv;
class clsEthProtocolSendSrv;
class clsProtocolScanSrv;
class clsEthProtocolScanSrv;

// The copy after the ETX of a serial Send: edits the two operands in place
// and pCopyBytesCount (0 off, else 1, 2 or 4); pConfirmed tells whether the
// user confirmed. The count is written back either way; the caller decides
// whether to take it.
using SendAdvancedEditor = std::function<void(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn,
                                              int32_t& pCopyBytesCount, bool& pConfirmed)>;

// The Send dialog of a TCP/IP Send set, in the shape of SendEditor: a
// dialog without framing, which also links the operation's block operand.
using EthSendEditor = std::function<void(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod,
                                         InstancesPtr pFBInstances, bool& pConfirmed)>;

// The Send dialog of a serial Send set: the dialog edits pSendSrv itself
// (a scratch copy of the operation's image) and writes the chosen Config
// into pFBMethod at once; pConfirmed is true only when the person left it
// with an OK that passed validation. A host that has no instance to offer
// gets pConfirmed false and no dialog.
using SendEditor = std::function<void(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                                      bool& pConfirmed)>;
// The Scan dialog of a serial Scan set, in the same shape; it also links the
// operation's three OutOperands in place, which a Cancel does not undo.
using ScanEditor = std::function<void(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                                      bool& pConfirmed)>;

// The Scan dialog of a TCP/IP Scan set, in the shape of ScanEditor: no
// framing, and five OutOperands to link, the last one a vector of five.
using EthScanEditor = std::function<void(clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod,
                                         InstancesPtr pFBInstances, bool& pConfirmed)>;

struct MessageEditorHooks {
    SendAdvancedEditor SendAdvanced;
    EthSendEditor EthSendEdit;
    SendEditor SendEdit;
    ScanEditor ScanEdit;
    EthScanEditor EthScanEdit;
};

// The hooks in force, one set for the process.
MessageEditorHooks& messageEditorHooks();

// Runs the Send advanced editor. Without one installed it raises
// RuntimeError(91), as a call on an object that was never set does, with a
// description that tells the program to call installMessageEditors().
void runSendAdvancedEditor(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
                           bool& pConfirmed);

// Runs the TCP/IP Send dialog on the set; RuntimeError(91) naming
// installMessageEditors() when none is installed.
void runEthSendEditor(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                      bool& pConfirmed);

// Runs the Send dialog on the set; RuntimeError(91) naming
// installMessageEditors() when none is installed.
void runSendEditor(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

// Runs the Scan dialog on the set; RuntimeError(91) naming
// installMessageEditors() when none is installed.
void runScanEditor(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

// Runs the TCP/IP Scan dialog on the set; RuntimeError(91) naming
// installMessageEditors() when none is installed.
void runEthScanEditor(clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                      bool& pConfirmed);

// Puts the hooks back as they were when it was made; for tests.
class ScopedMessageEditorHooks {
public:
    ScopedMessageEditorHooks() : saved_(messageEditorHooks()) {}
    ~ScopedMessageEditorHooks() { messageEditorHooks() = saved_; }
    ScopedMessageEditorHooks(const ScopedMessageEditorHooks&) = delete;
    ScopedMessageEditorHooks& operator=(const ScopedMessageEditorHooks&) = delete;

private:
    MessageEditorHooks saved_;
};

}  // namespace qx
