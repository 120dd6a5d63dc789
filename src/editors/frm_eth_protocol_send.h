// The TCP/IP Send dialog: the messages of a TCP/IP Send operation in
// FlgSend, the link of the message number, the Config the Send belongs to,
// and the link of the operation's one block operand, the flag "Send Message
// succeeded". A message over a socket has no framing: no start or end of
// text, no end-of-message form, no Advanced. Like the serial dialog it edits
// the scratch set it is given; OK only checks it.
#pragma once
#include <cstdint>

#include "editors/send_message_dialog.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"

namespace qx {

class clsEthProtocolSendSrv;

class frmEthProtocolSend : public SendMessageDialog {
public:
    frmEthProtocolSend();

    // Keeps the objects and loads the instance list; with no instance to
    // offer pConfirmed is false and nothing is shown. Otherwise LoadDialog,
    // the modal run, and pConfirmed := DialogResult.
    void Edit(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

    ToolBar& abSend;
    Frame SSPanel1{L"SSPanel1"};
    Grid& FlgSend;
    Label Label2{L"Label2"};
    Label lbOpMsgsucceeded{L"lbOpMsgsucceeded"};
    CommandButton cmdOpMsgsucceeded{L"cmdOpMsgsucceeded"};

    // Set when the form loads; cleared when the first activation has run
    // the link of item 1 by itself.
    bool FirstActivation = false;

    // The link of item 1 of itfFBMethod_OutOperands, by its button and by a
    // double-click on its label.
    void cmdOpMsgsucceeded_Click();
    void lbOpMsgsucceeded_DblClick();

    // The conditions of every Send dialog, and item 1 linked.
    void UpdateOKEnabled() override;
    std::wstring inputProblem() const override;
    // Something to download (143), no empty message before a used one
    // (144), no fixed-text run above 255 characters; in that order.
    bool ValidateMessages() override;

    void Form_Activate() override;

protected:
    void LoadDialog() override;
    void loadOwnControls() override;

private:
    // Item 1 of the operation's OutOperands; nullptr outside an edit or
    // when the operation has none.
    OperandPtr succeededOperand() const;
    void linkSucceeded();
};

}  // namespace qx
