// The Numeric and Stream tabs of a Send field: what the lists offer follows
// the format and the width of the linked operand, and every list writes its
// item's number straight to the candidate. The panel owns its controls; the
// field dialog places them with addControls and puts them into its two tab
// panels with Container().
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "field_editors/numeric_width_class.h"
#include "message/protocol_numeric_var.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"

namespace qx {

class SendNumericPanel {
public:
    // The list handlers return at once while the host's isLoading is true.
    explicit SendNumericPanel(bool& isLoading);
    SendNumericPanel(const SendNumericPanel&) = delete;
    SendNumericPanel& operator=(const SendNumericPanel&) = delete;

    // In tab order, for the host's addControls.
    std::vector<Control*> Controls();
    // The numeric rows go to numericTab, the stream rows to streamTab.
    void Container(Control* numericTab, Control* streamTab);

    const NumericVarPtr& Candidate() const { return candidate_; }
    // Fills and positions every list on the candidate, with the Send reset
    // rules; the count options run their handlers as the load selects them.
    void Load(NumericVarPtr candidate);
    // What a new link of this operand type changes: the digit lists, the
    // binary list and the copy-bytes list. A type of no known width changes nothing.
    void ApplyTypeRules(int32_t operandType);

    // Asked to size the dialog for the new format.
    std::function<void()> OnResize;

    // Tab 2 "Numeric".
    ComboBox cbVarFormat{L"cbVarFormat"};
    Label lbVectorLength{L"lbVectorLength"};
    ComboBox cbVectorLength{L"cbVectorLength"};
    Frame fFormat{L"fFormat"};
    Label lbPrefixSignFormat{L"lbPrefixSignFormat"};
    ComboBox cbPrefixSignFormat{L"cbPrefixSignFormat"};
    Label lbLeading{L"lbLeading"};
    ComboBox cbLeading{L"cbLeading"};
    Label lbBefore{L"lbBefore"};
    ComboBox cbBefore{L"cbBefore"};
    ComboBox cbAfter{L"cbAfter"};
    Label lbHexFormat{L"lbHexFormat"};
    ComboBox cbHexFormat{L"cbHexFormat"};
    Label lbBinaryFormat{L"lbBinaryFormat"};
    ComboBox cbBinaryFormat{L"cbBinaryFormat"};
    // Tab 3 "Stream".
    Frame fCopyBytes{L"fCopyBytes"};
    ComboBox cbCopyBytes{L"cbCopyBytes"};
    Frame fVectorLength{L"fVectorLength"};
    OptionButton opDirect{L"opDirect"};
    ComboBox cbSteamVector{L"cbSteamVector"};
    OptionButton opInDirect{L"opInDirect"};
    CommandButton cmdInDirect{L"cmdInDirect"};
    Label lbInDirect{L"lbInDirect"};

    void cbVarFormat_Click();
    void cbVectorLength_Click();
    void cbPrefixSignFormat_Click();
    void cbLeading_Click();
    void cbBefore_Click();
    void cbAfter_Click();
    void cbHexFormat_Click();
    void cbBinaryFormat_Click();
    void cbCopyBytes_Click();
    void cbSteamVector_Click();
    void opDirect_Click();
    void opInDirect_Click();
    void cmdInDirect_Click();
    void lbInDirect_Click();

private:
    // Shows the rows of a format: 0 decimal, 1 hex, 2 binary.
    void showFormat(int32_t varFormat);
    void fillDigits(WidthClass width);
    void fillBinaryFormat(WidthClass width);
    void fillCopyBytes(WidthClass width);
    // Refills the copy-bytes list for the width and resets what it cannot hold.
    void refillCopyBytes(WidthClass width);

    bool& isLoading_;
    NumericVarPtr candidate_;
};

}  // namespace qx
