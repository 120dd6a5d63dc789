// The layer of the field editors: the field dialog with its tabs, the
// end-of-message dialog and the control-character selector. The message
// sets below reach its dialogs only through the hooks of
// message/editor_hooks.h, which installFieldEditors() fills.
#pragma once

namespace qx {

// Installs frmProtocolConfigAdvanced as the end-of-message editor of the
// Send and Scan sets, and frmProtocolVars as the editor of every field, each
// only where editorHooks() holds no editor yet: a host that set its own
// EndOfMessage or Field keeps it. The component calls it at every class
// object it hands out; a program that links the core without the component
// calls it once before editing. Calling it again changes nothing.
void installFieldEditors();

}  // namespace qx
