// The serial Send dialog: the messages of a Send operation in FlgSend, the
// framing of each message that goes out (start of text, end of text and the
// end-of-message form), the link of the message number, the Config the Send
// belongs to, and through Advanced the copy of received bytes. It edits the
// set it is given, a scratch copy of the operation's image: every change is
// in the set at once, OK only checks it, and Cancel leaves the set for the
// operation to drop.
#pragma once
#include <cstdint>

#include "editors/framing_grid.h"
#include "editors/send_message_dialog.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"

namespace qx {

class clsProtocolSendSrv;

class frmProtocolSend : public SendMessageDialog {
public:
    frmProtocolSend();

    // Keeps the objects and loads the instance list; with no instance to
    // offer pConfirmed is false and nothing is shown. Otherwise LoadDialog,
    // the modal run, and pConfirmed := DialogResult. The dialog drops the
    // set and the host objects when it has closed.
    void Edit(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

    ToolBar& abSend;
    Frame SSPanel1{L"SSPanel1"};
    Grid& FlgSend;
    CheckBox ckSendSTX{L"ckSendSTX"};
    Frame Frame8{L"Frame8"};
    Label lbSendSTXLength{L"lbSendSTXLength"};
    ComboBox cbSendSTXLength{L"cbSendSTXLength"};
    Label lbSendSTX{L"lbSendSTX"};
    Grid flgSendSTX{L"flgSendSTX"};
    CheckBox ckSendETX{L"ckSendETX"};
    Frame Frame9{L"Frame9"};
    Label lbSendETXLength{L"lbSendETXLength"};
    ComboBox cbSendETXLength{L"cbSendETXLength"};
    Label lbSendETX{L"lbSendETX"};
    Grid flgSendETX{L"flgSendETX"};
    CommandButton cmdSendAdvanced{L"cmdSendAdvanced"};
    Label lbSendETXEndOfMsg{L"lbSendETXEndOfMsg"};
    CommandButton cmdAdvanced{L"cmdAdvanced"};

    void ckSendSTX_Click();
    void ckSendETX_Click();
    void cbSendSTXLength_Click();
    void cbSendETXLength_Click();
    void flgSendSTX_KeyPress(int32_t& KeyAscii);
    void flgSendSTX_KeyDown(int32_t& KeyCode, int32_t Shift);
    void flgSendSTX_DblClick();
    void flgSendETX_KeyPress(int32_t& KeyAscii);
    void flgSendETX_KeyDown(int32_t& KeyCode, int32_t Shift);
    void flgSendETX_DblClick();
    void cmdSendAdvanced_Click();
    void cmdAdvanced_Click();

    // Every framing control off: disabled, the disabled colour, the
    // end-of-message text empty, both check boxes unchecked and disabled.
    void ResetFramingControls();

    bool ValidateMessages() override;

protected:
    void LoadDialog() override;
    void loadOwnControls() override;

private:
    // The STX or the ETX side of the framing.
    struct FramingSide {
        CheckBox& Check;
        Label& LengthLabel;
        ComboBox& Length;
        Label& BytesLabel;
        FramingGrid& Bytes;
        bool IsETX;
    };
    FramingSide stx();
    FramingSide etx();
    void enableSide(const FramingSide& side, bool on);
    void showSide(const FramingSide& side);
    void setLength(const FramingSide& side, int32_t length);
    void clearBytes(const FramingSide& side);
    void lengthChanged(const FramingSide& side);
    void showEndOfMessage();

    FramingGrid stxBytes_;
    FramingGrid etxBytes_;
};

}  // namespace qx
