#include "field_editors/checksum_panel.h"

#include <string>

#include "field_editors/frm_protocol_hex_selector.h"
#include "field_editors/number_lists.h"
#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t calculationLRC = 10;
// Told when LRC is chosen; the choice stands all the same.
constexpr int32_t messageLRC = 477;
constexpr int32_t endOfMessageETX = 1;
constexpr int32_t offsetCount = 16;
constexpr int32_t longestChecksum = 5;
constexpr const wchar_t* linkToolTip = L"Link Operand to Variable";

int32_t chosenNumber(const ComboBox& list) { return list.ItemData(list.ListIndex()); }
}  // namespace

ChecksumPanel::ChecksumPanel(bool& isLoading) : isLoading_(isLoading) {
    lbCSFromFwr.Caption(L"Calculate Offset From (Forward) : ");
    lbCSFromBwr.Caption(L"Calculate Offset Till (Backwards) : ");
    lbCSCalcType.Caption(L"Calculation Type :");
    lbCSModulusType.Caption(L"Modulus Method :");
    lbCSLength.Caption(L"Checksum Length In Bytes :");
    lbCSFormatView.Caption(L"Format :");
    chkSTXInCS.Caption(L"Include STX in Checksum calculation");
    ckSpecialAddition.Caption(L"Advanced: Set Limits");
    lbCSSAFromVal.Caption(L"From Value :");
    lbCSSAToVal.Caption(L"To Value :");
    lbCSSAAddedVal.Caption(L"Add Value :");
    // The tool tip says operand; the button picks a character.
    for (CommandButton* button : {&cmdCSSAFromVal, &cmdCSSAToVal, &cmdCSSAAddedVal}) {
        button->Caption(L"...");
        button->ToolTipText(linkToolTip);
    }
    for (Control* row : limitRows()) row->Container(&fSpecialAddition);

    cbCSFromFwr.OnClick = [this] { cbCSFromFwr_Click(); };
    cbCSFromBwr.OnClick = [this] { cbCSFromBwr_Click(); };
    cbCSCalcType.OnClick = [this] { cbCSCalcType_Click(); };
    cbCSModulusType.OnClick = [this] { cbCSModulusType_Click(); };
    cbCSLength.OnClick = [this] { cbCSLength_Click(); };
    cbCSFormatView.OnClick = [this] { cbCSFormatView_Click(); };
    chkSTXInCS.OnClick = [this] { chkSTXInCS_Click(); };
    ckSpecialAddition.OnClick = [this] { ckSpecialAddition_Click(); };
    cmdCSSAFromVal.OnClick = [this] { cmdCSSAFromVal_Click(); };
    lbtxtCSSAFromVal.OnClick = [this] { lbtxtCSSAFromVal_Click(); };
    cmdCSSAToVal.OnClick = [this] { cmdCSSAToVal_Click(); };
    lbtxtCSSAToVal.OnClick = [this] { lbtxtCSSAToVal_Click(); };
    cmdCSSAAddedVal.OnClick = [this] { cmdCSSAAddedVal_Click(); };
    lbtxtCSSAAddedVal.OnClick = [this] { lbtxtCSSAAddedVal_Click(); };
}

std::vector<Control*> ChecksumPanel::lists() {
    return {&lbCSFromFwr,     &cbCSFromFwr,     &lbCSFromBwr, &cbCSFromBwr, &lbCSCalcType,   &cbCSCalcType,
            &lbCSModulusType, &cbCSModulusType, &lbCSLength,  &cbCSLength,  &lbCSFormatView, &cbCSFormatView};
}

std::vector<Control*> ChecksumPanel::limitRows() {
    return {&lbCSSAFromVal, &lbtxtCSSAFromVal, &cmdCSSAFromVal,    &lbCSSAToVal,    &lbtxtCSSAToVal,
            &cmdCSSAToVal,  &lbCSSAAddedVal,   &lbtxtCSSAAddedVal, &cmdCSSAAddedVal};
}

std::vector<Control*> ChecksumPanel::Controls() {
    std::vector<Control*> controls = lists();
    controls.insert(controls.end(), {&chkSTXInCS, &ckSpecialAddition, &fSpecialAddition});
    for (Control* row : limitRows()) controls.push_back(row);
    return controls;
}

void ChecksumPanel::Container(Control* container) {
    for (Control* control : lists()) control->Container(container);
    chkSTXInCS.Container(container);
    ckSpecialAddition.Container(container);
    fSpecialAddition.Container(container);
}

void ChecksumPanel::FillLists() {
    addNumbers(cbCSFromFwr, 0, offsetCount - 1);
    fillNumbers(cbCSFromBwr, 0, offsetCount - 1);
    // CRC-8 stands before CRC-16, whose codes lie the other way round.
    cbCSCalcType.Clear();
    cbCSCalcType.AddItem(L"SUM-8", 1);
    cbCSCalcType.AddItem(L"XOR-8", 2);
    cbCSCalcType.AddItem(L"CRC-8", 4);
    cbCSCalcType.AddItem(L"CRC-16", 3);
    cbCSCalcType.AddItem(L"2's COMPLEMENT", 5);
    cbCSCalcType.AddItem(L"CRC-CCITT1", 6);
    cbCSCalcType.AddItem(L"CRC-CCITT2", 7);
    cbCSCalcType.AddItem(L"CRC-CCITT3", 8);
    cbCSCalcType.AddItem(L"CRC-CCITT4", 9);
    cbCSCalcType.AddItem(L"LRC", calculationLRC);
    cbCSModulusType.Clear();
    cbCSModulusType.AddItem(L"256 (100H)", 1);
    cbCSModulusType.AddItem(L"65536 (10000H)", 2);
    cbCSModulusType.AddItem(L"32 bit", 3);
    fillNumbers(cbCSLength, 1, longestChecksum);
    cbCSFormatView.Clear();
    cbCSFormatView.AddItem(L"Decimal ASCII", 0);
    cbCSFormatView.AddItem(L"Hex as ASCII", 1);
    cbCSFormatView.AddItem(L"Binary", 2);
}

void ChecksumPanel::ShowCandidate() {
    clsProtocolCSVar& candidate = objectOf(candidate_);
    positionOn(cbCSFromFwr, candidate.OffsetFromForward());
    positionOn(cbCSFromBwr, candidate.OffsetTillBackwards());
    positionOn(cbCSCalcType, candidate.CalculationType());
    positionOn(cbCSModulusType, candidate.ModulusType());
    positionOn(cbCSLength, candidate.CSLength());
    positionOn(cbCSFormatView, candidate.FormatView());
    // Unchecked too when the limits are off, so that a reload after
    // InitChecksum shows the defaults; the host's isLoading keeps the handler out.
    ckSpecialAddition.Value(candidate.SpecialAddition() ? CheckBox::Checked : CheckBox::Unchecked);
    showLimits(candidate.SpecialAddition());
}

void ChecksumPanel::LoadSTXInCS(ChecksumPanelHost host, bool extendedOperands, int32_t endOfMessage) {
    clsProtocolCSVar& candidate = objectOf(candidate_);
    if (!extendedOperands) {
        // Without the capability the setting cannot stay on.
        chkSTXInCS.Enabled(false);
        chkSTXInCS.Value(CheckBox::Unchecked);
        candidate.STXInCS(false);
        return;
    }
    chkSTXInCS.Enabled(host == ChecksumPanelHost::FieldDialog || endOfMessage != endOfMessageETX);
    chkSTXInCS.Value(candidate.STXInCS() ? CheckBox::Checked : CheckBox::Unchecked);
}

void ChecksumPanel::Enable(bool enabled) {
    for (Control* control : lists()) control->Enabled(enabled);
    chkSTXInCS.Enabled(enabled);
    ckSpecialAddition.Enabled(enabled);
    if (!enabled)
        for (Control* row : limitRows()) row->Enabled(false);
}

void ChecksumPanel::showLimits(bool shown) {
    for (Control* row : limitRows()) row->Enabled(shown);
    const clsProtocolCSVar& candidate = objectOf(candidate_);
    lbtxtCSSAFromVal.Caption(shown ? std::to_wstring(candidate.SA_FromValue()) : L"");
    lbtxtCSSAToVal.Caption(shown ? std::to_wstring(candidate.SA_ToValue()) : L"");
    lbtxtCSSAAddedVal.Caption(shown ? std::to_wstring(candidate.SA_AddedValue()) : L"");
}

void ChecksumPanel::cbCSFromFwr_Click() {
    if (isLoading_) return;
    objectOf(candidate_).OffsetFromForward(chosenNumber(cbCSFromFwr));
}

void ChecksumPanel::cbCSFromBwr_Click() {
    if (isLoading_) return;
    objectOf(candidate_).OffsetTillBackwards(chosenNumber(cbCSFromBwr));
}

void ChecksumPanel::cbCSCalcType_Click() {
    if (isLoading_) return;
    objectOf(candidate_).CalculationType(chosenNumber(cbCSCalcType));
    if (candidate_->CalculationType() == calculationLRC) ShowMessage(messageLRC, {});
}

void ChecksumPanel::cbCSModulusType_Click() {
    if (isLoading_) return;
    objectOf(candidate_).ModulusType(chosenNumber(cbCSModulusType));
}

void ChecksumPanel::cbCSLength_Click() {
    if (isLoading_) return;
    objectOf(candidate_).CSLength(chosenNumber(cbCSLength));
}

void ChecksumPanel::cbCSFormatView_Click() {
    if (isLoading_) return;
    objectOf(candidate_).FormatView(chosenNumber(cbCSFormatView));
}

// Runs also while loading: the rule for loading sets the box and the field together.
void ChecksumPanel::chkSTXInCS_Click() { objectOf(candidate_).STXInCS(chkSTXInCS.Value() == CheckBox::Checked); }

void ChecksumPanel::ckSpecialAddition_Click() {
    if (isLoading_) return;
    isLoading_ = true;
    // Unticking keeps the stored limits, so ticking again shows them.
    const bool checked = ckSpecialAddition.Value() == CheckBox::Checked;
    objectOf(candidate_).SpecialAddition(checked);
    showLimits(checked);
    isLoading_ = false;
}

bool ChecksumPanel::pickLimit(uint8_t& code) {
    // The selector starts on code 0 whatever the field holds.
    return frmProtocolHexSelector().Edit(code, frmProtocolHexSelector::LowCharsTable);
}

void ChecksumPanel::cmdCSSAFromVal_Click() {
    uint8_t code = 0;
    if (!pickLimit(code)) return;
    objectOf(candidate_).SA_FromValue(code);
    lbtxtCSSAFromVal.Caption(std::to_wstring(code));
}

void ChecksumPanel::lbtxtCSSAFromVal_Click() { cmdCSSAFromVal_Click(); }

void ChecksumPanel::cmdCSSAToVal_Click() {
    uint8_t code = 0;
    if (!pickLimit(code)) return;
    objectOf(candidate_).SA_ToValue(code);
    lbtxtCSSAToVal.Caption(std::to_wstring(code));
}

void ChecksumPanel::lbtxtCSSAToVal_Click() { cmdCSSAToVal_Click(); }

void ChecksumPanel::cmdCSSAAddedVal_Click() {
    uint8_t code = 0;
    if (!pickLimit(code)) return;
    objectOf(candidate_).SA_AddedValue(code);
    lbtxtCSSAAddedVal.Caption(std::to_wstring(code));
}

void ChecksumPanel::lbtxtCSSAAddedVal_Click() { cmdCSSAAddedVal_Click(); }

}  // namespace qx
