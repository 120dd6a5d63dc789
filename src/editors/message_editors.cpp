#include "editors/message_editors.h"

#include <utility>

#include "editors/frm_eth_protocol_scan.h"
#include "editors/frm_eth_protocol_send.h"
#include "editors/frm_protocol_scan.h"
#include "editors/frm_protocol_send.h"
#include "editors/frm_protocol_send_advanced.h"
#include "sets/set_editor_hooks.h"

namespace qx {

void installMessageEditors() {
    // Only where no editor is installed: a host's own stays, whether it came
    // before this call or after. A fresh dialog for each edit, as the host's
    // shared instance is dropped once the dialog has closed.
    MessageEditorHooks& hooks = messageEditorHooks();
    if (!hooks.SendAdvanced)
        hooks.SendAdvanced = [](OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
                                bool& pConfirmed) {
            frmProtocolSendAdvanced().Edit(std::move(pOpCopyDestination), std::move(pOpCopyWhenOn), pCopyBytesCount,
                                           pConfirmed);
        };
    if (!hooks.EthSendEdit)
        hooks.EthSendEdit = [](clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                               bool& pConfirmed) {
            frmEthProtocolSend().Edit(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
        };
    if (!hooks.SendEdit)
        hooks.SendEdit = [](clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                            bool& pConfirmed) {
            frmProtocolSend().Edit(pSendSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
        };
    if (!hooks.ScanEdit)
        hooks.ScanEdit = [](clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                            bool& pConfirmed) {
            frmProtocolScan().Edit(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
        };
    if (!hooks.EthScanEdit)
        hooks.EthScanEdit = [](clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                               bool& pConfirmed) {
            frmEthProtocolScan().Edit(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
        };
}

}  // namespace qx
