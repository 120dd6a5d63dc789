// The dialogs that edit the end of a message (and, later, a field) belong to
// the field editors, a layer above the message model and the message sets
// whose operations open them. Those operations reach the dialogs through the
// hooks here, which the field editors install: installFieldEditors() in
// field_editors/field_editors.h, called by the component at each class
// object and by any program that links the core on its own. It fills only
// empty hooks, so a host may set either hook to an editor of its own, before
// or after. The registry lies in the message layer so that the fields'
// EditVar can use it as the sets do.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>

#include "message/itf_protocol_var.h"

namespace qx {

class clsProtocolCSVar;

// Edits pChecksum and pEndOfMessageType (1 "ETX", 2 "Checksum & ETX",
// 3 "ETX & Checksum") in place; true when the user accepted. Both may have
// changed even when it answers false.
using EndOfMessageEditor = std::function<bool(std::shared_ptr<clsProtocolCSVar> pChecksum, int32_t& pEndOfMessageType)>;

// Edits a field: gets the replica and pMethodType (1 Scan, else Send) and
// answers the field to use, perhaps of another class, with IsCanceled set
// when the user cancelled.
using FieldEditor = std::function<VarPtr(VarPtr pVar, int32_t& pMethodType)>;

struct EditorHooks {
    EndOfMessageEditor EndOfMessage;
    FieldEditor Field;
};

// The hooks in force, one set for the process.
EditorHooks& editorHooks();

// Runs the end-of-message editor. Without one installed it raises
// RuntimeError(91), as a call on an object that was never set does, with a
// description that tells the program to call installFieldEditors().
bool runEndOfMessageEditor(std::shared_ptr<clsProtocolCSVar> pChecksum, int32_t& pEndOfMessageType);

// Runs the field editor; RuntimeError(91) without one, as above.
VarPtr runFieldEditor(VarPtr pVar, int32_t& pMethodType);

// What both message sets do for their end of message: the editor gets a
// replica of the set's checksum and a copy of its type; only when the user
// accepts do both replace the set's own. A checksum that is no
// clsProtocolCSVar is error 13, none at all error 91.
void editEndOfMessageOnReplica(VarPtr& checksum, int32_t& endOfMessageType);

// Puts the hooks back as they were when it was made; for tests.
class ScopedEditorHooks {
public:
    ScopedEditorHooks() : saved_(editorHooks()) {}
    ~ScopedEditorHooks() { editorHooks() = saved_; }
    ScopedEditorHooks(const ScopedEditorHooks&) = delete;
    ScopedEditorHooks& operator=(const ScopedEditorHooks&) = delete;

private:
    EditorHooks saved_;
};

}  // namespace qx
