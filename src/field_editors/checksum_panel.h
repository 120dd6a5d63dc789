// The checksum controls and their logic, shared by the two places where a
// clsProtocolCSVar is edited: the Checksum tab of the field dialog and the
// end-of-message dialog. The panel owns its controls; the host form places
// them with addControls(Controls()) and puts them into its frame or tab with
// Container(). Every change is written straight to the candidate.
#pragma once
#include <cstdint>
#include <vector>

#include "message/protocol_cs_var.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"

namespace qx {

// Where the panel is shown; the rule for chkSTXInCS depends on it.
enum class ChecksumPanelHost { FieldDialog, EndOfMessageDialog };

class ChecksumPanel {
public:
    // The handlers of the lists and of ckSpecialAddition return at once
    // while the host's isLoading is true.
    explicit ChecksumPanel(bool& isLoading);
    ChecksumPanel(const ChecksumPanel&) = delete;
    ChecksumPanel& operator=(const ChecksumPanel&) = delete;

    // In tab order, for the host's addControls.
    std::vector<Control*> Controls();
    // Puts the panel into the host's frame or tab; the rows of the limits
    // stay in fSpecialAddition.
    void Container(Control* container);

    const CSVarPtr& Candidate() const { return candidate_; }
    void Candidate(CSVarPtr value) { candidate_ = std::move(value); }

    // Fills the lists. cbCSFromFwr is not emptied first, so that each fill
    // adds another sixteen items to it.
    void FillLists();
    // Positions each list on its property and shows the limits.
    void ShowCandidate();
    // Enables and checks chkSTXInCS on loading; endOfMessage counts for the
    // end-of-message dialog only.
    void LoadSTXInCS(ChecksumPanelHost host, bool extendedOperands, int32_t endOfMessage);
    // The end-of-message dialog's "ETX" disables the lists with their labels,
    // chkSTXInCS, ckSpecialAddition and the nine controls of the limits. A
    // checksum enables the same but the nine, which stay as ckSpecialAddition
    // left them, and enables chkSTXInCS whatever the operand capability.
    void Enable(bool enabled);

    Label lbCSFromFwr{L"lbCSFromFwr"};
    ComboBox cbCSFromFwr{L"cbCSFromFwr"};
    Label lbCSFromBwr{L"lbCSFromBwr"};
    ComboBox cbCSFromBwr{L"cbCSFromBwr"};
    Label lbCSCalcType{L"lbCSCalcType"};
    ComboBox cbCSCalcType{L"cbCSCalcType"};
    Label lbCSModulusType{L"lbCSModulusType"};
    ComboBox cbCSModulusType{L"cbCSModulusType"};
    Label lbCSLength{L"lbCSLength"};
    ComboBox cbCSLength{L"cbCSLength"};
    Label lbCSFormatView{L"lbCSFormatView"};
    ComboBox cbCSFormatView{L"cbCSFormatView"};
    CheckBox chkSTXInCS{L"chkSTXInCS"};
    CheckBox ckSpecialAddition{L"ckSpecialAddition"};
    Frame fSpecialAddition{L"fSpecialAddition"};
    Label lbCSSAFromVal{L"lbCSSAFromVal"};
    Label lbtxtCSSAFromVal{L"lbtxtCSSAFromVal"};
    CommandButton cmdCSSAFromVal{L"cmdCSSAFromVal"};
    Label lbCSSAToVal{L"lbCSSAToVal"};
    Label lbtxtCSSAToVal{L"lbtxtCSSAToVal"};
    CommandButton cmdCSSAToVal{L"cmdCSSAToVal"};
    Label lbCSSAAddedVal{L"lbCSSAAddedVal"};
    Label lbtxtCSSAAddedVal{L"lbtxtCSSAAddedVal"};
    CommandButton cmdCSSAAddedVal{L"cmdCSSAAddedVal"};

    void cbCSFromFwr_Click();
    void cbCSFromBwr_Click();
    void cbCSCalcType_Click();
    void cbCSModulusType_Click();
    void cbCSLength_Click();
    void cbCSFormatView_Click();
    void chkSTXInCS_Click();
    void ckSpecialAddition_Click();
    void cmdCSSAFromVal_Click();
    void lbtxtCSSAFromVal_Click();
    void cmdCSSAToVal_Click();
    void lbtxtCSSAToVal_Click();
    void cmdCSSAAddedVal_Click();
    void lbtxtCSSAAddedVal_Click();

private:
    std::vector<Control*> lists();
    std::vector<Control*> limitRows();
    // Enables the nine and shows the limits, or disables them and blanks the values.
    void showLimits(bool shown);
    // Runs the control-character selector; true with the chosen code when OK.
    bool pickLimit(uint8_t& code);

    bool& isLoading_;
    CSVarPtr candidate_;
};

}  // namespace qx
