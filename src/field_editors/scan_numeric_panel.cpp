#include "field_editors/scan_numeric_panel.h"

#include <string>

#include "framework/shared_helpers.h"

namespace qx {

namespace {
constexpr int32_t maxVectorLength = 100;
constexpr int32_t maxStreamVector = 255;
constexpr int32_t maxLength = 10;
constexpr int32_t hexBytes = 8;
constexpr int32_t fixedStream = 3;
constexpr int32_t freeStream = 4;

std::wstring receiveBytesText(int32_t n) {
    return L"Convert " + std::to_wstring(n) + L" Receive Bytes to ONE Linked Element";
}

int32_t chosen(const ComboBox& combo) { return combo.ItemData(combo.ListIndex()); }
}  // namespace

ScanNumericPanel::ScanNumericPanel(bool& isLoading) : isLoading_(isLoading) {
    lbScanVectorLength.Caption(L"Vector Length : ");
    fScanFormat.Caption(L"Format");
    lbScanPrefix.Caption(L"Prefix Sign Format : ");
    lbScanLength.Caption(L"Length : ");
    lbDecimalPoint.Caption(L"Decimal Point");
    cmdDecimalPointOp.Caption(L"...");
    lbScanCopyBytes.Caption(L"Format : ");
    lbScanStream.Caption(L"Vector Length : ");
    ckSteamFixLen.Caption(L"Stream Fixed Length");
    ckAddNullToStream.Caption(L"Add Null To The End Of The Stream");
    // As designed: the fixed decimal rows; the load shows what the format needs.
    cbScanHexLength.Visible(false);

    cbScanVarFormat.OnClick = [this] { cbScanVarFormat_Click(); };
    cbScanVectorLength.OnClick = [this] { cbScanVectorLength_Click(); };
    cbScanPrefixSignFormat.OnClick = [this] { cbScanPrefixSignFormat_Click(); };
    cbScanLength.OnClick = [this] { cbScanLength_Click(); };
    cbScanHexLength.OnClick = [this] { cbScanHexLength_Click(); };
    cmdDecimalPointOp.OnClick = [this] { cmdDecimalPointOp_Click(); };
    lbDecimalPointOp.OnClick = [this] { lbDecimalPointOp_Click(); };
    cbScanCopyBytes.OnClick = [this] { cbScanCopyBytes_Click(); };
    cbScanStream.OnClick = [this] { cbScanStream_Click(); };
    ckSteamFixLen.OnClick = [this] { ckSteamFixLen_Click(); };
    ckAddNullToStream.OnClick = [this] { ckAddNullToStream_Click(); };
}

std::vector<Control*> ScanNumericPanel::Controls() {
    return {&cbScanVarFormat,        &lbScanVectorLength, &cbScanVectorLength, &fScanFormat,     &lbScanPrefix,
            &cbScanPrefixSignFormat, &lbScanLength,       &cbScanLength,       &lbDecimalPoint,  &cmdDecimalPointOp,
            &lbDecimalPointOp,       &cbScanHexLength,    &lbScanCopyBytes,    &cbScanCopyBytes, &lbScanStream,
            &cbScanStream,           &ckSteamFixLen,      &ckAddNullToStream};
}

void ScanNumericPanel::Container(Control* numericTab, Control* streamTab) {
    for (Control* control : std::initializer_list<Control*>{&cbScanVarFormat, &lbScanVectorLength, &cbScanVectorLength,
                                                            &fScanFormat, &cbScanHexLength})
        control->Container(numericTab);
    for (Control* control :
         std::initializer_list<Control*>{&lbScanPrefix, &cbScanPrefixSignFormat, &lbScanLength, &cbScanLength,
                                         &lbDecimalPoint, &cmdDecimalPointOp, &lbDecimalPointOp})
        control->Container(&fScanFormat);
    for (Control* control : std::initializer_list<Control*>{&lbScanCopyBytes, &cbScanCopyBytes, &lbScanStream,
                                                            &cbScanStream, &ckSteamFixLen, &ckAddNullToStream})
        control->Container(streamTab);
}

void ScanNumericPanel::Load(std::shared_ptr<clsProtocolScanNumericVar> candidate) {
    candidate_ = std::move(candidate);
    clsProtocolScanNumericVar& field = *candidate_;
    LoadingScope loading(isLoading_);
    fillNumbers(cbScanStream, 1, maxStreamVector);
    fillCopyBytes(widthClassOnLoad(field.LikedOperand()->OperandType()));
    cbScanVarFormat.Clear();
    cbScanVarFormat.AddItem(L"Decimal ASCII: Fixed Length", 0);
    cbScanVarFormat.AddItem(L"Decimal ASCII: No Fixed Length", 1);
    cbScanVarFormat.AddItem(L"Hex as Ascii", 2);
    fillNumbers(cbScanVectorLength, 1, maxVectorLength);
    fillNumbers(cbScanLength, 1, maxLength);
    cbScanPrefixSignFormat.Clear();
    cbScanPrefixSignFormat.AddItem(L"Positive & Negative (+,-)", 1);
    cbScanPrefixSignFormat.AddItem(L"Negative Only (-)", 2);
    cbScanPrefixSignFormat.AddItem(L"No Prefix", 0);
    cbScanHexLength.Clear();
    for (int32_t n = 1; n <= hexBytes; ++n) cbScanHexLength.AddItem(receiveBytesText(n), n);

    positionOn(cbScanStream, field.StreamVectorLength());
    positionOn(cbScanCopyBytes, field.CopyBytesFormat());
    positionOn(cbScanVarFormat, field.VarFormat());
    positionOn(cbScanVectorLength, field.VectorLength());
    positionOn(cbScanLength, field.BeforePoint());
    positionOn(cbScanPrefixSignFormat, field.PrefixSignFormat());
    positionOn(cbScanHexLength, field.BeforePoint());

    const OperandPtr decimalPoint = field.DecimalPointOperand();
    if (decimalPoint && !decimalPoint->IsNew()) lbDecimalPointOp.Caption(GetOperandDisplayText(*decimalPoint));
    if (field.AddNullToEndOfStream()) ckAddNullToStream.Value(CheckBox::Checked);
    const int32_t varFormat = field.VarFormat();
    if (varFormat == fixedStream) {
        ckSteamFixLen.Value(CheckBox::Checked);
    } else {
        if (varFormat == 0 || varFormat == freeStream) ckSteamFixLen.Value(CheckBox::Unchecked);
        showFormat(varFormat);
    }
}

void ScanNumericPanel::showFormat(int32_t varFormat) {
    switch (varFormat) {
        case 0:
        case freeStream:
            for (Control* control : std::initializer_list<Control*>{
                     &fScanFormat, &lbScanPrefix, &cbScanLength, &lbScanLength, &lbScanVectorLength,
                     &cbScanVectorLength, &lbDecimalPoint, &lbDecimalPointOp, &cmdDecimalPointOp})
                control->Visible(true);
            cbScanHexLength.Visible(false);
            break;
        case 1:
            fScanFormat.Visible(true);
            lbScanPrefix.Visible(true);
            for (Control* control : std::initializer_list<Control*>{&cbScanLength, &lbScanLength, &lbScanVectorLength,
                                                                    &cbScanVectorLength, &cbScanHexLength})
                control->Visible(false);
            break;
        case 2:
            // The prefix and length rows stay as they are, hidden with their frame.
            fScanFormat.Visible(false);
            lbScanVectorLength.Visible(true);
            cbScanVectorLength.Visible(true);
            cbScanHexLength.Visible(true);
            break;
        default:
            break;
    }
}

void ScanNumericPanel::fillCopyBytes(WidthClass width) {
    cbScanCopyBytes.Clear();
    // The numbers cross on purpose: 3 bytes is 3, 4 bytes is 2.
    if (width == WidthClass::Float) {
        cbScanCopyBytes.AddItem(L"Convert 4 Receive Bytes to ONE Linked Element (Big)", 2);
        cbScanCopyBytes.AddItem(L"Convert 4 Receive Bytes to ONE Linked Element (Small)", 5);
        return;
    }
    cbScanCopyBytes.AddItem(receiveBytesText(1), 0);
    cbScanCopyBytes.AddItem(receiveBytesText(2), 1);
    if (width == WidthClass::Word) return;
    cbScanCopyBytes.AddItem(receiveBytesText(3), 3);
    cbScanCopyBytes.AddItem(receiveBytesText(4), 2);
}

void ScanNumericPanel::ApplyTypeRules(int32_t operandType) {
    const WidthClass width = widthClassOfLink(operandType);
    if (width == WidthClass::Other || !candidate_) return;
    clsProtocolScanNumericVar& field = *candidate_;
    LoadingScope loading(isLoading_);
    fillCopyBytes(width);
    const int32_t copyBytes = field.CopyBytesFormat();
    if (width == WidthClass::Float) {
        // A float linked again falls back to "(Big)", also from "(Small)".
        cbScanCopyBytes.ListIndex(0);
        field.CopyBytesFormat(2);
        return;
    }
    if (width == WidthClass::Word && (copyBytes == 2 || copyBytes == 3)) field.CopyBytesFormat(0);
    positionOn(cbScanCopyBytes, field.CopyBytesFormat());
}

int32_t ScanNumericPanel::ChosenVarFormat() const {
    return cbScanVarFormat.ListIndex() < 0 ? 0 : chosen(cbScanVarFormat);
}

void ScanNumericPanel::cbScanVarFormat_Click() {
    if (isLoading_) return;
    clsProtocolScanNumericVar& field = *candidate_;
    const int32_t varFormat = chosen(cbScanVarFormat);
    field.VarFormat(varFormat);
    if (OnResize) OnResize();
    showFormat(varFormat);
    {
        LoadingScope loading(isLoading_);
        if (varFormat == 0) {
            field.BeforePoint(5);
            positionOn(cbScanLength, field.BeforePoint());
        } else if (varFormat == 2) {
            field.BeforePoint(2);
            positionOn(cbScanHexLength, field.BeforePoint());
        }
    }
    ApplyTypeRules(field.LikedOperand()->OperandType());
    if (OnOkRule) OnOkRule();
}

void ScanNumericPanel::cbScanVectorLength_Click() {
    if (isLoading_) return;
    candidate_->VectorLength(chosen(cbScanVectorLength));
}

void ScanNumericPanel::cbScanPrefixSignFormat_Click() {
    if (isLoading_) return;
    candidate_->PrefixSignFormat(chosen(cbScanPrefixSignFormat));
}

void ScanNumericPanel::cbScanLength_Click() {
    if (isLoading_) return;
    candidate_->BeforePoint(chosen(cbScanLength));
}

void ScanNumericPanel::cbScanHexLength_Click() {
    if (isLoading_) return;
    candidate_->BeforePoint(chosen(cbScanHexLength));
}

void ScanNumericPanel::cmdDecimalPointOp_Click() {
    const OperandPtr decimalPoint = candidate_->DecimalPointOperand();
    decimalPoint->EditOperand();
    if (!decimalPoint->IsNew()) lbDecimalPointOp.Caption(GetOperandDisplayText(*decimalPoint));
    if (OnOkRule) OnOkRule();
}

void ScanNumericPanel::lbDecimalPointOp_Click() { cmdDecimalPointOp_Click(); }

void ScanNumericPanel::cbScanCopyBytes_Click() {
    if (isLoading_) return;
    candidate_->CopyBytesFormat(chosen(cbScanCopyBytes));
}

void ScanNumericPanel::cbScanStream_Click() {
    if (isLoading_) return;
    candidate_->StreamVectorLength(chosen(cbScanStream));
}

void ScanNumericPanel::ckSteamFixLen_Click() {
    if (isLoading_) return;
    candidate_->VarFormat(ckSteamFixLen.Value() == CheckBox::Checked ? fixedStream : freeStream);
}

void ScanNumericPanel::ckAddNullToStream_Click() {
    if (isLoading_) return;
    candidate_->AddNullToEndOfStream(ckAddNullToStream.Value() == CheckBox::Checked);
}

}  // namespace qx
