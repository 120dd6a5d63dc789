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

#include "platform/host/operand.h"

namespace qx {

// The copy after the ETX of a serial Send: edits the two operands in place
// and pCopyBytesCount (0 off, else 1, 2 or 4); pConfirmed tells whether the
// user confirmed. The count is written back either way; the caller decides
// whether to take it.
using SendAdvancedEditor = std::function<void(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn,
                                              int32_t& pCopyBytesCount, bool& pConfirmed)>;

struct MessageEditorHooks {
    SendAdvancedEditor SendAdvanced;
};

// The hooks in force, one set for the process.
MessageEditorHooks& messageEditorHooks();

// Runs the Send advanced editor. Without one installed it raises
// RuntimeError(91), as a call on an object that was never set does, with a
// description that tells the program to call installMessageEditors().
void runSendAdvancedEditor(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
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
