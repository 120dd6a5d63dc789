#include "field_editors/field_editors.h"

#include "field_editors/frm_protocol_config_advanced.h"
#include "field_editors/frm_protocol_vars.h"
#include "message/editor_hooks.h"

namespace qx {

void installFieldEditors() {
    // Only where no editor is installed: a host's own stays, whether it came
    // before this call or after. A fresh dialog for each edit, as the host's
    // shared instance is dropped after each.
    EditorHooks& hooks = editorHooks();
    if (!hooks.EndOfMessage)
        hooks.EndOfMessage = [](std::shared_ptr<clsProtocolCSVar> pChecksum, int32_t& pEndOfMessageType) {
            return frmProtocolConfigAdvanced().Edit(std::move(pChecksum), pEndOfMessageType);
        };
    if (!hooks.Field)
        hooks.Field = [](VarPtr pVar, int32_t& pMethodType) {
            return frmProtocolVars().Edit(std::move(pVar), pMethodType);
        };
}

}  // namespace qx
