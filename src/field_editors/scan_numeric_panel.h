// The Numeric and Stream tabs of a Scan field. The decimal point comes from a
// second operand rather than from a digit count; the stream tab chooses
// between a fixed and a free length. The panel owns its controls; the field
// dialog places them with addControls and puts them into its two tab panels
// with Container().
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "field_editors/numeric_width_class.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"

namespace qx {

class ScanNumericPanel {
public:
    // The list and check box handlers return at once while the host's isLoading is true.
    explicit ScanNumericPanel(bool& isLoading);
    ScanNumericPanel(const ScanNumericPanel&) = delete;
    ScanNumericPanel& operator=(const ScanNumericPanel&) = delete;

    // In tab order, for the host's addControls.
    std::vector<Control*> Controls();
    void Container(Control* numericTab, Control* streamTab);

    const std::shared_ptr<clsProtocolScanNumericVar>& Candidate() const { return candidate_; }
    // Fills and positions the lists on the candidate; nothing is reset on load.
    void Load(std::shared_ptr<clsProtocolScanNumericVar> candidate);
    // What a new link of this operand type changes: the copy-bytes list only.
    void ApplyTypeRules(int32_t operandType);
    // The format the Numeric tab shows, which the field takes when the tab is selected.
    int32_t ChosenVarFormat() const;

    // Asked to size the dialog for the new format.
    std::function<void()> OnResize;
    // Asked to apply the dialog's OK rule.
    std::function<void()> OnOkRule;

    // Tab 5 "Numeric".
    ComboBox cbScanVarFormat{L"cbScanVarFormat"};
    Label lbScanVectorLength{L"lbScanVectorLength"};
    ComboBox cbScanVectorLength{L"cbScanVectorLength"};
    Frame fScanFormat{L"fScanFormat"};
    Label lbScanPrefix{L"lbScanPrefix"};
    ComboBox cbScanPrefixSignFormat{L"cbScanPrefixSignFormat"};
    Label lbScanLength{L"lbScanLength"};
    ComboBox cbScanLength{L"cbScanLength"};
    Label lbDecimalPoint{L"lbDecimalPoint"};
    CommandButton cmdDecimalPointOp{L"cmdDecimalPointOp"};
    Label lbDecimalPointOp{L"lbDecimalPointOp"};
    ComboBox cbScanHexLength{L"cbScanHexLength"};
    // Tab 6 "Stream".
    Label lbScanCopyBytes{L"lbScanCopyBytes"};
    ComboBox cbScanCopyBytes{L"cbScanCopyBytes"};
    Label lbScanStream{L"lbScanStream"};
    ComboBox cbScanStream{L"cbScanStream"};
    CheckBox ckSteamFixLen{L"ckSteamFixLen"};
    CheckBox ckAddNullToStream{L"ckAddNullToStream"};

    void cbScanVarFormat_Click();
    void cbScanVectorLength_Click();
    void cbScanPrefixSignFormat_Click();
    void cbScanLength_Click();
    void cbScanHexLength_Click();
    void cmdDecimalPointOp_Click();
    void lbDecimalPointOp_Click();
    void cbScanCopyBytes_Click();
    void cbScanStream_Click();
    void ckSteamFixLen_Click();
    void ckAddNullToStream_Click();

private:
    // Shows the rows of a format: 0 and 4 fixed decimal, 1 free decimal, 2 hex.
    void showFormat(int32_t varFormat);
    void fillCopyBytes(WidthClass width);

    bool& isLoading_;
    std::shared_ptr<clsProtocolScanNumericVar> candidate_;
};

}  // namespace qx
