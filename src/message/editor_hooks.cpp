#include "message/editor_hooks.h"

#include "message/protocol_cs_var.h"
#include "platform/basics/runtime_error.h"

namespace qx {

EditorHooks& editorHooks() {
    static EditorHooks hooks;
    return hooks;
}

bool runEndOfMessageEditor(std::shared_ptr<clsProtocolCSVar> pChecksum, int32_t& pEndOfMessageType) {
    const EndOfMessageEditor& editor = editorHooks().EndOfMessage;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No end-of-message editor dialog is installed: a program that links QxFBCom2::core "
                           L"itself must call qx::installFieldEditors() from field_editors/field_editors.h once "
                           L"before editing the end of a message, or set qx::editorHooks().EndOfMessage to an "
                           L"editor of its own.");
    return editor(std::move(pChecksum), pEndOfMessageType);
}

VarPtr runFieldEditor(VarPtr pVar, int32_t& pMethodType) {
    const FieldEditor& editor = editorHooks().Field;
    if (!editor)
        throw RuntimeError(err::ObjectNotSet, L"QxFBCom2",
                           L"No field editor dialog is installed: a program that links QxFBCom2::core itself must "
                           L"call qx::installFieldEditors() from field_editors/field_editors.h once before editing "
                           L"fields, or set qx::editorHooks().Field to an editor of its own.");
    return editor(std::move(pVar), pMethodType);
}

void editEndOfMessageOnReplica(VarPtr& checksum, int32_t& endOfMessageType) {
    auto replica = std::dynamic_pointer_cast<clsProtocolCSVar>(objectOf(checksum).GetReplica());
    if (!replica) raiseError(err::TypeMismatch);
    int32_t type = endOfMessageType;
    if (!runEndOfMessageEditor(replica, type)) return;
    endOfMessageType = type;
    checksum = std::move(replica);
}

}  // namespace qx
