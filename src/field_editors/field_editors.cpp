#include "field_editors/field_editors.h"

#include "field_editors/frm_protocol_config_advanced.h"
#include "field_editors/frm_protocol_vars.h"
#include "message/editor_hooks.h"

namespace qx {

void installFieldEditors() {
    // A fresh dialog for each edit, as the host's shared instance is dropped after each.
    editorHooks().EndOfMessage = [](std::shared_ptr<clsProtocolCSVar> pChecksum, int32_t& pEndOfMessageType) {
        return frmProtocolConfigAdvanced().Edit(std::move(pChecksum), pEndOfMessageType);
    };
    editorHooks().Field = [](VarPtr pVar, int32_t& pMethodType) {
        return frmProtocolVars().Edit(std::move(pVar), pMethodType);
    };
}

}  // namespace qx
