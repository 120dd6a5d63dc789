// The layer of the message editors: the Send and Scan dialogs and the Send
// advanced dialog. The message sets below reach these dialogs only through
// the hooks of sets/set_editor_hooks.h, which installMessageEditors() fills.
#pragma once

namespace qx {

// Installs frmProtocolSendAdvanced as the Send advanced editor,
// frmProtocolSend and frmProtocolScan as the Send and Scan editors, and
// frmEthProtocolSend and frmEthProtocolScan as those of the TCP/IP family,
// each only where messageEditorHooks() holds no editor yet: a host that set
// its own keeps it. The component calls it at every class object it hands
// out, next to installFieldEditors(); a program that links the core without
// the component calls it once before editing. Calling it again changes
// nothing.
void installMessageEditors();

}  // namespace qx
