// What the two Scan dialogs (serial and TCP/IP) share beyond the message
// dialog: the Scan set, the links of the operands the Scan reports into
// (items 1 to N of the operation's OutOperands, each shown in its label), the
// chain of links a fresh Scan leads the person through at its first
// activation, OK's conditions on the links, and the message checks of OK.
// The serial dialog adds the start of text and the terminators; the TCP/IP
// one has no framing but two more links, the last a vector of five.
//
// Both edit the set they are given, a scratch copy of the operation's image,
// and the operands in place: a Cancel leaves the set for the operation to
// drop, but a link once made stays.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "editors/message_dialog.h"
#include "platform/controls/controls.h"
#include "platform/host/host_contract.h"
#include "platform/host/operand.h"

namespace qx {

class clsProtocolScanSrv;

class ScanMessageDialog : public MessageDialog {
public:
    static constexpr int32_t ClearAllMessage = 147;
    static constexpr int32_t NoMessagesMessage = 148;

    // The links of items 1 to 3, which every Scan has: the flag of a
    // received message, the number of bytes, the index of the message.
    // Label1's caption is the dialog's own.
    Label Label1{L"Label1"};
    Label lbOpFail{L"lbOpFail"};
    CommandButton cmdFailLink{L"cmdFailLink"};
    Label Label3{L"Label3"};
    Label lblOpReceived{L"lblOpReceived"};
    CommandButton cmdOpReceived{L"cmdOpReceived"};
    Label Label2{L"Label2"};
    Label lbOpMessageNum{L"lbOpMessageNum"};
    CommandButton cmdOpMessageNum{L"cmdOpMessageNum"};

    // Set when the form loads; cleared once the links of a fresh Scan have
    // been offered at the first activation.
    bool FirstActivation = false;

    // The set of the edit in progress; RuntimeError(91) outside an edit.
    clsProtocolScanSrv& scanSet() const;

    // The count of the operation's InOperands and OutOperands.
    int32_t GetOperandCount() const;

    // Each link by its button and by a double-click on its label.
    void cmdFailLink_Click() { linkItem(1); }
    void lbOpFail_DblClick() { linkItem(1); }
    void cmdOpReceived_Click() { linkItem(2); }
    void lblOpReceived_DblClick() { linkItem(2); }
    void cmdOpMessageNum_Click() { linkItem(3); }
    void lbOpMessageNum_DblClick() { linkItem(3); }

    // OK needs a Config instance and the required links.
    void UpdateOKEnabled() override;
    std::wstring inputProblem() const override;

    void Form_Load() override;
    // A Scan whose links are all open leads the person through them in
    // order; the first Cancel in the picker ends the chain.
    void Form_Activate() override;

protected:
    ScanMessageDialog(std::wstring formName, std::wstring caption);

    // Adds a link row (caption, display, button) to the form; link k is the
    // row's place among the links.
    void addLink(int32_t k, Label& caption, Label& display, CommandButton& button, const wchar_t* text);
    // How many of the first links OK requires.
    void requireLinks(int32_t required) { requiredLinks_ = required; }

    // Keeps the set and the host objects, loads the instance list and runs
    // the dialog. With no instance, or with a sole instance and an operation
    // without operands, pConfirmed is false and nothing is shown.
    void editScan(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);
    void dropReferences() override;
    bool fillsListAfterSoleInstance() override { return GetOperandCount() != 0; }

    // The start of LoadDialog: the grid painted, the caret, the labels of the
    // links. Leaves IgnoreGridEvents set.
    void loadMessagesAndLinks();
    // The first checks of OK: something to download (148), no empty message
    // before a used one (144).
    bool checkMessages();

    // The link of item k (1 to N); prepareLink runs just before the picker.
    void linkItem(int32_t k);
    virtual void prepareLink(int32_t /*k*/, clsOperand& /*operand*/) {}
    // Item k of OutOperands; nullptr when the host gave fewer.
    clsOperand* outOperand(int32_t k) const;
    // An item the host did not give counts as open.
    bool isNewItem(int32_t k) const;

private:
    std::vector<Label*> linkDisplays_;
    // The caption beside each link, which names it.
    std::vector<Label*> linkCaptions_;
    int32_t requiredLinks_ = 0;
    clsProtocolScanSrv* set_ = nullptr;
};

}  // namespace qx
