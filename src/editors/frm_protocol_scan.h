// The serial Scan dialog: the messages a Scan operation waits for in FlgScan
// (column 1 each message's length), the start of text, the terminator by
// which the controller finds the end of a received message (end of text,
// a fixed message length or a silence on the line), and the links of the
// three operands the Scan reports into (what every Scan dialog does with
// them is in ScanMessageDialog).
#pragma once
#include <cstdint>

#include "editors/framing_grid.h"
#include "editors/scan_message_dialog.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"

namespace qx {

class clsProtocolScanSrv;

class frmProtocolScan : public ScanMessageDialog {
public:
    frmProtocolScan();

    // As ScanMessageDialog::editScan: LoadDialog, the modal run, and
    // pConfirmed := DialogResult, unless there is nothing to offer.
    void Edit(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

    ToolBar& abScan;
    Frame SSPanel1{L"SSPanel1"};
    Grid& FlgScan;
    Frame Frame1{L"Frame1"};
    CheckBox ckSTX{L"ckSTX"};
    Label lbSTXLength{L"lbSTXLength"};
    ComboBox cbSTXLength{L"cbSTXLength"};
    Label lbSTX{L"lbSTX"};
    Grid flgSTX{L"flgSTX"};
    Frame Frame4{L"Frame4"};
    OptionButton opEndOfText{L"opEndOfText"};
    OptionButton opMessageLength{L"opMessageLength"};
    OptionButton opSilenceTime{L"opSilenceTime"};
    Frame Frame2{L"Frame2"};
    Label lbETXLength{L"lbETXLength"};
    ComboBox cbETXLength{L"cbETXLength"};
    Label lbETX{L"lbETX"};
    Grid flgETX{L"flgETX"};
    CommandButton cmdAdvanced{L"cmdAdvanced"};
    Label lbETXEndOfMsg{L"lbETXEndOfMsg"};
    Frame Frame3{L"Frame3"};
    ComboBox cbMessageLength{L"cbMessageLength"};
    Frame Frame5{L"Frame5"};
    ComboBox cbSilenceTime{L"cbSilenceTime"};

    void ckSTX_Click();
    void cbSTXLength_Click();
    void cbETXLength_Click();
    void cbMessageLength_Click();
    void cbSilenceTime_Click();
    void opEndOfText_Click();
    void opMessageLength_Click();
    void opSilenceTime_Click();
    void flgSTX_KeyPress(int32_t& KeyAscii);
    void flgSTX_KeyDown(int32_t& KeyCode, int32_t Shift);
    void flgSTX_DblClick();
    void flgETX_KeyPress(int32_t& KeyAscii);
    void flgETX_KeyDown(int32_t& KeyCode, int32_t Shift);
    void flgETX_DblClick();
    void cmdAdvanced_Click();

    // Every framing and terminator control off: disabled, the disabled
    // colour, lists without selection, ckSTX and the options unchecked and
    // disabled.
    void ResetFramingControls();
    void EnableETXControls(bool on);
    void EnableMessageLength(bool on);
    void EnableSilenceTime(bool on);

    // The message checks, the framing cells filled, a terminator chosen,
    // no fixed-text run above 255 characters; in that order.
    bool ValidateMessages() override;

protected:
    void LoadDialog() override;
    void loadOwnControls() override;

private:
    void showEndOfMessage();
    void enableList(ComboBox& list, bool on);
    void showSTX();
    void showETX();

    FramingGrid stxBytes_;
    FramingGrid etxBytes_;
};

}  // namespace qx
