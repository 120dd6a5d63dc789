// What the two Send dialogs (serial and TCP/IP) share beyond the message
// dialog: the Send set, the link of the operand that chooses the message at
// run time (hidden while there is a single message, when that operand is the
// constant 0), the dialog's answer to a change in the number of messages,
// OK's conditions on the link, and the message checks of OK. The serial
// dialog adds the framing between the messages' checks and the long-segment
// check; the TCP/IP one has none.
#pragma once
#include <cstdint>
#include <string>

#include "editors/message_dialog.h"
#include "platform/controls/controls.h"
#include "platform/host/host_contract.h"

namespace qx {

class clsProtocolSendSrv;

class SendMessageDialog : public MessageDialog {
public:
    static constexpr int32_t ClearAllMessage = 142;
    static constexpr int32_t NoMessagesMessage = 143;

    Label lblMessageNum{L"lblMessageNum"};
    Label lbOpMsgNumToSend{L"lbOpMsgNumToSend"};
    CommandButton cmdOpMsgNumToSend{L"cmdOpMsgNumToSend"};

    // True while FlgSend has exactly one row: the message number link is
    // hidden and OpMessageNumber is the constant 0.
    bool SingleMessageMode = false;

    // The set of the edit in progress; RuntimeError(91) outside an edit.
    clsProtocolSendSrv& sendSet() const;

    // The picker on OpMessageNumber, by cmdOpMsgNumToSend and by a
    // double-click on lbOpMsgNumToSend.
    void EditMessageNumberLink();
    void cmdOpMsgNumToSend_Click();
    void lbOpMsgNumToSend_DblClick();

    // OK needs a Config instance, and with two messages or more a link.
    void UpdateOKEnabled() override;
    std::wstring inputProblem() const override;

protected:
    SendMessageDialog(std::wstring formName, std::wstring caption);

    // Keeps the set and the host objects; the dialog loads. Then the
    // instance list; false when the host has no instance to offer.
    bool beginSendEdit(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances);
    void dropReferences() override;

    // LoadDialog's steps 1 to 3: the grid painted, the caret, the single
    // message rule, the link's text. Runs with IgnoreGridEvents set and
    // leaves it set.
    void loadMessagesAndLink();
    void AfterMessageCountChanged() override;

    // The first two checks of OK: something to download (143), no empty
    // message before a used one (144). The last, checkLongSegments, each
    // Send dialog runs after its own.
    bool checkMessages();

private:
    void showLink(bool visible);

    clsProtocolSendSrv* set_ = nullptr;
};

}  // namespace qx
