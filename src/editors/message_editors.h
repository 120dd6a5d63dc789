// The layer of the message editors: the Send and Scan dialogs and the Send
// advanced dialog. The message sets below reach these dialogs only through
// the hooks of sets/set_editor_hooks.h, which installMessageEditors() fills.
#pragma once

namespace qx {

// Installs frmProtocolSendAdvanced as the Send advanced editor and
// frmProtocolSend as the Send editor (frmEthProtocolSend for a TCP/IP
// Send) and frmProtocolScan as the Scan editor, each only where messageEditorHooks()
// holds no editor yet: a host that set its own keeps
// it. The component calls it at every class object it hands out, next to
// installFieldEditors(); a program that links the core without the
// component calls it once before editing. Calling it again changes nothing.
void installMessageEditors();

}  // namespace qx
