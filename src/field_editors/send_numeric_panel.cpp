#include "field_editors/send_numeric_panel.h"

#include <string>

#include "framework/shared_helpers.h"

namespace qx {

namespace {
constexpr int32_t directCount = -1;
constexpr int32_t countOperandType = 3;
constexpr int32_t maxVectorLength = 100;
constexpr int32_t maxStreamVector = 255;
constexpr int32_t hexBytes = 8;
constexpr int32_t wordDigits = 5;

std::wstring sendBytesText(int32_t n) {
    return L"Convert ONE Linked Element to " + std::to_wstring(n) + L" Send Bytes";
}

int32_t chosen(const ComboBox& combo) { return combo.ItemData(combo.ListIndex()); }
}  // namespace

SendNumericPanel::SendNumericPanel(bool& isLoading) : isLoading_(isLoading) {
    lbVectorLength.Caption(L"Vector Length : ");
    fFormat.Caption(L"Format");
    lbPrefixSignFormat.Caption(L"Prefix Format : ");
    lbLeading.Caption(L"Leading Type : ");
    lbBefore.Caption(L"Decimal Point : ");
    lbHexFormat.Caption(L"Send as : ");
    lbBinaryFormat.Caption(L"Send as : ");
    fCopyBytes.Caption(L"Format");
    fVectorLength.Caption(L"Vector Length");
    opDirect.Caption(L"Direct:");
    opInDirect.Caption(L"Indirect:");
    cmdInDirect.Caption(L"...");
    cmdInDirect.ToolTipText(L"Link Operand to Variable");
    // As designed: the decimal rows; the load shows what the format needs.
    for (Control* control :
         std::initializer_list<Control*>{&lbHexFormat, &cbHexFormat, &lbBinaryFormat, &cbBinaryFormat})
        control->Visible(false);

    cbVarFormat.OnClick = [this] { cbVarFormat_Click(); };
    cbVectorLength.OnClick = [this] { cbVectorLength_Click(); };
    cbPrefixSignFormat.OnClick = [this] { cbPrefixSignFormat_Click(); };
    cbLeading.OnClick = [this] { cbLeading_Click(); };
    cbBefore.OnClick = [this] { cbBefore_Click(); };
    cbAfter.OnClick = [this] { cbAfter_Click(); };
    cbHexFormat.OnClick = [this] { cbHexFormat_Click(); };
    cbBinaryFormat.OnClick = [this] { cbBinaryFormat_Click(); };
    cbCopyBytes.OnClick = [this] { cbCopyBytes_Click(); };
    cbSteamVector.OnClick = [this] { cbSteamVector_Click(); };
    opDirect.OnClick = [this] { opDirect_Click(); };
    opInDirect.OnClick = [this] { opInDirect_Click(); };
    cmdInDirect.OnClick = [this] { cmdInDirect_Click(); };
    lbInDirect.OnClick = [this] { lbInDirect_Click(); };
}

std::vector<Control*> SendNumericPanel::Controls() {
    return {&cbVarFormat,        &lbVectorLength,     &cbVectorLength, &fFormat,
            &lbPrefixSignFormat, &cbPrefixSignFormat, &lbLeading,      &cbLeading,
            &lbBefore,           &cbBefore,           &cbAfter,        &lbHexFormat,
            &cbHexFormat,        &lbBinaryFormat,     &cbBinaryFormat, &fCopyBytes,
            &cbCopyBytes,        &fVectorLength,      &opDirect,       &cbSteamVector,
            &opInDirect,         &cmdInDirect,        &lbInDirect};
}

void SendNumericPanel::Container(Control* numericTab, Control* streamTab) {
    for (Control* control :
         std::initializer_list<Control*>{&cbVarFormat, &lbVectorLength, &cbVectorLength, &fFormat, &lbHexFormat,
                                         &cbHexFormat, &lbBinaryFormat, &cbBinaryFormat})
        control->Container(numericTab);
    for (Control* control : std::initializer_list<Control*>{&lbPrefixSignFormat, &cbPrefixSignFormat, &lbLeading,
                                                            &cbLeading, &lbBefore, &cbBefore, &cbAfter})
        control->Container(&fFormat);
    fCopyBytes.Container(streamTab);
    cbCopyBytes.Container(&fCopyBytes);
    fVectorLength.Container(streamTab);
    // The two options make one group because they share this frame.
    for (Control* control :
         std::initializer_list<Control*>{&opDirect, &cbSteamVector, &opInDirect, &cmdInDirect, &lbInDirect})
        control->Container(&fVectorLength);
}

void SendNumericPanel::Load(NumericVarPtr candidate) {
    candidate_ = std::move(candidate);
    clsProtocolNumericVar& field = *candidate_;
    const WidthClass width = widthClassOnLoad(field.LikedOperand()->OperandType());
    {
        LoadingScope loading(isLoading_);
        cbVarFormat.Clear();
        cbVarFormat.AddItem(L"Decimal ASCII", 0);
        cbVarFormat.AddItem(L"Hex as ASCII", 1);
        cbPrefixSignFormat.Clear();
        cbPrefixSignFormat.AddItem(L"Positive & Negative (+,-)", 1);
        cbPrefixSignFormat.AddItem(L"Negative Only (-)", 2);
        cbPrefixSignFormat.AddItem(L"No Prefix", 0);
        fillNumbers(cbVectorLength, 1, maxVectorLength);
        cbLeading.Clear();
        cbLeading.AddItem(L"No Leading", 0);
        cbLeading.AddItem(L"Leading Zeros", 1);
        cbLeading.AddItem(L"Leading Spaces", 2);
        fillCopyBytes(WidthClass::Long);
        fillNumbers(cbSteamVector, 1, maxStreamVector);

        cbHexFormat.Clear();
        for (int32_t n = 1; n <= hexBytes; ++n) cbHexFormat.AddItem(sendBytesText(n), n);
        fillBinaryFormat(width);
        refillCopyBytes(width);

        const int32_t varFormat = field.VarFormat();
        showFormat(varFormat);
        if (varFormat == 0)
            fillDigits(width);
        else if (varFormat == 1)
            positionOn(cbHexFormat, field.BeforePoint());
        else if (varFormat == 2)
            positionOn(cbBinaryFormat, field.BeforePoint());

        positionOn(cbVarFormat, field.VarFormat());
        positionOn(cbVectorLength, field.VectorLength());
        positionOn(cbPrefixSignFormat, field.PrefixSignFormat());
        positionOn(cbLeading, field.LeadingZeros());
        positionOn(cbSteamVector, field.StreamVectorLength());
    }
    // The option handlers have no loading test: they set the enabled rows,
    // and a direct field gets -1 written once more.
    if (field.StreamLengthAddress() == directCount) {
        if (opDirect.Value())
            opDirect_Click();
        else
            opDirect.Value(true);
    } else {
        if (opInDirect.Value())
            opInDirect_Click();
        else
            opInDirect.Value(true);
        OperandPtr count = newOperand();
        count->OperandType(countOperandType);
        count->OperandAddress(field.StreamLengthAddress());
        (void)count->IsRegistered();
        lbInDirect.Caption(GetOperandDisplayText(*count));
    }
    LoadingScope loading(isLoading_);
    positionOn(cbCopyBytes, field.CopyBytesFormat());
}

void SendNumericPanel::showFormat(int32_t varFormat) {
    fFormat.Visible(varFormat == 0);
    lbHexFormat.Visible(varFormat == 1);
    cbHexFormat.Visible(varFormat == 1);
    lbBinaryFormat.Visible(varFormat == 2);
    cbBinaryFormat.Visible(varFormat == 2);
}

void SendNumericPanel::fillDigits(WidthClass width) {
    clsProtocolNumericVar& field = *candidate_;
    const bool word = width == WidthClass::Word;
    fillNumbers(cbBefore, 1, word ? wordDigits : 10);
    // A word holds five digits at most: a wider setting is cut back on the field.
    if (word && field.BeforePoint() > wordDigits) {
        cbBefore.ListIndex(FindComboIndex(cbBefore, wordDigits));
        field.BeforePoint(wordDigits);
    } else {
        positionOn(cbBefore, field.BeforePoint());
    }
    fillNumbers(cbAfter, 0, word ? 4 : 10);
    positionOn(cbAfter, field.AfterPoint());
}

void SendNumericPanel::fillBinaryFormat(WidthClass width) {
    cbBinaryFormat.Clear();
    const int32_t bytes = width == WidthClass::Word ? 2 : 4;
    for (int32_t n = 1; n <= bytes; ++n) cbBinaryFormat.AddItem(sendBytesText(n), n);
}

void SendNumericPanel::fillCopyBytes(WidthClass width) {
    cbCopyBytes.Clear();
    // The numbers cross on purpose: 3 bytes is 3, 4 bytes is 2.
    if (width == WidthClass::Float) {
        cbCopyBytes.AddItem(L"Convert ONE Linked Element to 4 Send Bytes (Big)", 2);
        cbCopyBytes.AddItem(L"Convert ONE Linked Element to 4 Send Bytes (Small)", 5);
        return;
    }
    cbCopyBytes.AddItem(sendBytesText(1), 0);
    cbCopyBytes.AddItem(sendBytesText(2), 1);
    if (width == WidthClass::Word) return;
    cbCopyBytes.AddItem(sendBytesText(3), 3);
    cbCopyBytes.AddItem(sendBytesText(4), 2);
}

void SendNumericPanel::refillCopyBytes(WidthClass width) {
    clsProtocolNumericVar& field = *candidate_;
    fillCopyBytes(width);
    const int32_t copyBytes = field.CopyBytesFormat();
    if (width == WidthClass::Word && (copyBytes == 2 || copyBytes == 3))
        field.CopyBytesFormat(0);
    else if (width == WidthClass::Float && copyBytes != 2 && copyBytes != 5)
        field.CopyBytesFormat(2);
    positionOn(cbCopyBytes, field.CopyBytesFormat());
}

void SendNumericPanel::ApplyTypeRules(int32_t operandType) {
    const WidthClass width = widthClassOfLink(operandType);
    if (width == WidthClass::Other || !candidate_) return;
    LoadingScope loading(isLoading_);
    fillDigits(width);
    if (candidate_->VarFormat() == 2) {
        fillBinaryFormat(width);
        candidate_->BeforePoint(1);
        positionOn(cbBinaryFormat, candidate_->BeforePoint());
    }
    refillCopyBytes(width);
}

void SendNumericPanel::cbVarFormat_Click() {
    if (isLoading_) return;
    clsProtocolNumericVar& field = *candidate_;
    const int32_t varFormat = chosen(cbVarFormat);
    field.VarFormat(varFormat);
    if (OnResize) OnResize();
    field.AfterPoint(0);
    ApplyTypeRules(field.LikedOperand()->OperandType());
    LoadingScope loading(isLoading_);
    showFormat(varFormat);
    switch (varFormat) {
        case 0:
            // LeadingZeros is left alone: a stay in hex has set it to 0 already.
            field.PrefixSignFormat(1);
            field.BeforePoint(2);
            positionOn(cbPrefixSignFormat, field.PrefixSignFormat());
            positionOn(cbBefore, field.BeforePoint());
            positionOn(cbAfter, field.AfterPoint());
            break;
        case 1:
            field.LeadingZeros(0);
            field.PrefixSignFormat(0);
            field.BeforePoint(2);
            positionOn(cbLeading, field.LeadingZeros());
            positionOn(cbPrefixSignFormat, field.PrefixSignFormat());
            positionOn(cbHexFormat, field.BeforePoint());
            break;
        case 2:
            field.LeadingZeros(0);
            field.PrefixSignFormat(0);
            positionOn(cbLeading, field.LeadingZeros());
            positionOn(cbPrefixSignFormat, field.PrefixSignFormat());
            break;
        default:
            break;
    }
}

void SendNumericPanel::cbVectorLength_Click() {
    if (isLoading_) return;
    candidate_->VectorLength(chosen(cbVectorLength));
}

void SendNumericPanel::cbPrefixSignFormat_Click() {
    if (isLoading_) return;
    candidate_->PrefixSignFormat(chosen(cbPrefixSignFormat));
}

void SendNumericPanel::cbLeading_Click() {
    if (isLoading_) return;
    candidate_->LeadingZeros(chosen(cbLeading));
}

void SendNumericPanel::cbBefore_Click() {
    if (isLoading_) return;
    candidate_->BeforePoint(chosen(cbBefore));
}

void SendNumericPanel::cbAfter_Click() {
    if (isLoading_) return;
    candidate_->AfterPoint(chosen(cbAfter));
}

void SendNumericPanel::cbHexFormat_Click() {
    if (isLoading_) return;
    candidate_->BeforePoint(chosen(cbHexFormat));
}

void SendNumericPanel::cbBinaryFormat_Click() {
    if (isLoading_) return;
    candidate_->BeforePoint(chosen(cbBinaryFormat));
}

void SendNumericPanel::cbCopyBytes_Click() {
    if (isLoading_) return;
    candidate_->CopyBytesFormat(chosen(cbCopyBytes));
}

void SendNumericPanel::cbSteamVector_Click() {
    if (isLoading_) return;
    candidate_->StreamVectorLength(chosen(cbSteamVector));
}

void SendNumericPanel::opDirect_Click() {
    lbInDirect.Enabled(false);
    cmdInDirect.Enabled(false);
    cbSteamVector.Enabled(true);
    candidate_->StreamLengthAddress(directCount);
    lbInDirect.Caption(L"");
}

void SendNumericPanel::opInDirect_Click() {
    // Nothing is written: the field stays direct until a count operand is chosen.
    cbSteamVector.Enabled(false);
    lbInDirect.Enabled(true);
    cmdInDirect.Enabled(true);
}

void SendNumericPanel::cmdInDirect_Click() {
    OperandPtr count = newOperand();
    count->OperandMode(1);
    count->AddAllowedType(1, countOperandType, true);
    count->OperandType(countOperandType);
    count->OperandAddress(candidate_->StreamLengthAddress());
    (void)count->IsRegistered();
    EditOperandChecked(count);
    if (count->IsEditCanceled()) return;
    lbInDirect.Caption(GetOperandDisplayText(*count));
    candidate_->StreamLengthAddress(count->OperandAddress());
}

void SendNumericPanel::lbInDirect_Click() { cmdInDirect_Click(); }

}  // namespace qx
