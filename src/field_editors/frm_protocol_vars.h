// The field dialog: one tab for each form a field can take. It holds one
// candidate field of each class and returns the candidate under the selected
// tab, so changing the tab changes the field's class. It works on a replica
// and objects of its own, never on the message; Cancel is possible only
// because of that. Tabs 1, 4, 8 and 9 edit binary, list, date and time
// fields here; tabs 2, 3, 5 and 6 (numeric and stream) and 7 (checksum) have
// their panels in units of their own, the checksum panel shared with the
// end-of-message dialog.
#pragma once
#include <cstdint>
#include <memory>

#include "field_editors/checksum_panel.h"
#include "field_editors/scan_numeric_panel.h"
#include "field_editors/send_numeric_panel.h"
#include "message/itf_protocol_var.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/tab_strip.h"
#include "platform/controls/text_box.h"

namespace qx {

class clsProtocolBinaryVar;
class clsProtocolNumericVar;
class clsProtocolistTextVar;
class clsProtocolScanNumericVar;
class clsProtocolDateVar;
class clsProtocolTimeVar;
class clsProtocolCSVar;

// Kinds of field, as the dialog numbers its tabs' classes.
namespace field_kind {
inline constexpr int32_t Binary = 2;
inline constexpr int32_t List = 3;
inline constexpr int32_t ScanNumeric = 4;
inline constexpr int32_t Date = 5;
inline constexpr int32_t Time = 6;
inline constexpr int32_t Checksum = 7;
inline constexpr int32_t SendNumeric = 8;
}  // namespace field_kind

class frmProtocolVars : public Form {
public:
    frmProtocolVars();

    // pMethodType 1 is Scan, anything else Send. The result is the candidate
    // under the last selected tab, with IsCanceled set unless OK ended it.
    VarPtr Edit(VarPtr pVar, int32_t& pMethodType);

    TabStrip tbSMSVars{L"tbSMSVars"};
    Frame SSActiveTabPanel1{L"SSActiveTabPanel1"}, SSActiveTabPanel2{L"SSActiveTabPanel2"},
        SSActiveTabPanel3{L"SSActiveTabPanel3"}, SSActiveTabPanel4{L"SSActiveTabPanel4"},
        SSActiveTabPanel5{L"SSActiveTabPanel5"}, SSActiveTabPanel6{L"SSActiveTabPanel6"},
        SSActiveTabPanel7{L"SSActiveTabPanel7"}, SSActiveTabPanel8{L"SSActiveTabPanel8"},
        SSActiveTabPanel9{L"SSActiveTabPanel9"};
    Label lblLink{L"lblLink"};
    Label lblOpData{L"lblOpData"};
    CommandButton cmdLink{L"cmdLink"};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};

    // Tab 1: the two texts of a binary field.
    Frame fText0{L"fText0"}, fText1{L"fText1"};
    TextBox txtText0{L"txtText0"}, txtText1{L"txtText1"};
    // Tab 4: the list of texts.
    Grid flgListTexts{L"flgListTexts"};
    CommandButton cmndNewVLT{L"cmndNewVLT"}, cmdDeleteVLT{L"cmdDeleteVLT"};
    CheckBox ckListTextAlign{L"ckListTextAlign"};
    ComboBox cbListTextAlign{L"cbListTextAlign"};
    // Tabs 8 and 9.
    Label lbDateFormatType{L"lbDateFormatType"}, lbTimeFormatType{L"lbTimeFormatType"};
    ComboBox cbDateFormatType{L"cbDateFormatType"}, cbTimeFormatType{L"cbTimeFormatType"};

    // While true every control handler returns at once.
    bool IsLoading = false;
    bool IsAccepted = false;
    // Tabs 2 and 3, and tabs 5 and 6: their controls, placed on this form.
    SendNumericPanel SendNumeric{IsLoading};
    ScanNumericPanel ScanNumeric{IsLoading};
    ChecksumPanel Checksum{IsLoading};
    int32_t CurrentKind = 0;
    VarPtr CurrentVar;
    std::shared_ptr<clsProtocolBinaryVar> BinaryCandidate;
    std::shared_ptr<clsProtocolNumericVar> NumericCandidate;
    std::shared_ptr<clsProtocolistTextVar> ListCandidate;
    std::shared_ptr<clsProtocolScanNumericVar> ScanNumericCandidate;
    std::shared_ptr<clsProtocolDateVar> DateCandidate;
    std::shared_ptr<clsProtocolTimeVar> TimeCandidate;
    std::shared_ptr<clsProtocolCSVar> ChecksumCandidate;
    // The sizes the open panel needs, in twips; the dialog's own height is the form's Height.
    int32_t StripHeight() const { return stripHeight_; }
    int32_t ButtonRowTop() const { return buttonRowTop_; }

    void Form_Load() override;
    void Form_Activate() override;
    void Form_KeyPress(int32_t& KeyAscii) override;
    void tbSMSVars_Click(int32_t NewTab);
    void cmdLink_Click();
    void lblOpData_Click();
    void cmdOk_Click();
    void cmdCancel_Click();
    void txtText0_Change();
    void txtText1_Change();
    void flgListTexts_StartEdit(int32_t Row, int32_t Col, bool& Cancel);
    void flgListTexts_RowColChange();
    void flgListTexts_SelChange();
    void cmndNewVLT_Click();
    void cmdDeleteVLT_Click();
    void ckListTextAlign_Click();
    void cbListTextAlign_Click();
    void cbDateFormatType_Click();
    void cbTimeFormatType_Click();

private:
    void makeCandidates(const VarPtr& pVar);
    void hideLinkRow();
    void refreshLinkRow();
    // The link of the candidate under the selected tab; nullptr on tabs without one.
    OperandPtr linkedOperand() const;
    void applyOkRule();
    void resizeForKind();
    void loadBinaryTab();
    void loadListTab();
    void loadDateAndTimeTabs();
    void loadChecksumTab();
    void storeListTab();
    void endDialog(bool accepted);

    int32_t stripHeight_ = 0;
    int32_t buttonRowTop_ = 0;
};

}  // namespace qx
