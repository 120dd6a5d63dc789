#include "field_editors/frm_protocol_hex_selector.h"

#include <array>

#include "framework/shared_helpers.h"
#include "platform/host/host_context.h"

namespace qx {

namespace {
constexpr int32_t keyEscape = 27;
constexpr int32_t iconPicture = 302;
constexpr int32_t colDec = 0, colHex = 1, colDescription = 2;
constexpr int32_t lowCharsRows = 33;
constexpr int32_t allCharsRows = 257;
// Codes from here on have no printable character in the table.
constexpr int32_t firstUnprintable = 127;

std::wstring hexText(int32_t code) {
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    return {digits[(code >> 4) & 0xF], digits[code & 0xF]};
}
}  // namespace

std::wstring controlCharacterName(int32_t code) {
    static constexpr std::array<const wchar_t*, 32> names = {
        L"(NUL)", L"(SOH)", L"(STX)", L"(ETX)", L"(EOT)", L"(ENQ)", L"(ACK)", L"(BEL)", L"(BS)",  L"(HT)",  L"(LF)",
        L"(VT)",  L"(FF)",  L"(CR)",  L"(SO)",  L"(SI)",  L"(DLE)", L"(DC1)", L"(DC2)", L"(DC3)", L"(DC4)", L"(NAK)",
        L"(SYN)", L"(ETB)", L"(CAN)", L"(EM)",  L"(SUB)", L"(ESC)", L"(FS)",  L"(GS)",  L"(RS)",  L"(US)"};
    if (code < 0 || code >= static_cast<int32_t>(names.size())) return L"";
    return names[static_cast<size_t>(code)];
}

frmProtocolHexSelector::frmProtocolHexSelector() : Form(L"frmProtocolHexSelector") {
    addControls({&fSelectCharacter, &flgLowChars, &cmdOk, &cmdCancel});
    flgLowChars.Container(&fSelectCharacter);
    Caption(L"Control Characters");
    KeyPreview(true);
    fSelectCharacter.Caption(L"Select Character");
    cmdOk.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    // One header row; every column can be clicked, the Dec column included.
    flgLowChars.Cols(3);
    flgLowChars.Rows(1);
    flgLowChars.FixedRows(1);
    flgLowChars.FixedCols(0);
    // A row is one character: the whole row shows as chosen.
    flgLowChars.SelectionMode(Grid::SelectionByRow);
    const std::array<const wchar_t*, 3> headers = {L"Dec", L"Hex", L"Description"};
    const std::array<int32_t, 3> widths = {795, 795, 900};
    for (int32_t c = 0; c < 3; ++c) {
        flgLowChars.TextMatrix(0, c, headers[static_cast<size_t>(c)]);
        flgLowChars.ColWidth(c, widths[static_cast<size_t>(c)]);
    }

    flgLowChars.OnClick = [this] { flgLowChars_Click(); };
    flgLowChars.OnDblClick = [this] { flgLowChars_DblClick(); };
    cmdOk.OnClick = [this] { cmdOk_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
}

bool frmProtocolHexSelector::Edit(uint8_t& pSelectedValue, int32_t pHexSelectorType) {
    hexSelectorType_ = pHexSelectorType;
    SelectedValue = 0;
    IsAccepted = false;
    host().Driver->ShowModal(*this);
    Unload();
    pSelectedValue = SelectedValue;
    return IsAccepted;
}

void frmProtocolHexSelector::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);
    fillGrid();
}

void frmProtocolHexSelector::fillGrid() {
    const auto fillRow = [this](int32_t row, const std::wstring& description) {
        const int32_t code = row - 1;
        flgLowChars.TextMatrix(row, colDec, std::to_wstring(code));
        flgLowChars.TextMatrix(row, colHex, hexText(code));
        flgLowChars.TextMatrix(row, colDescription, description);
    };
    flgLowChars.Rows(lowCharsRows);
    for (int32_t row = 1; row < lowCharsRows; ++row) fillRow(row, controlCharacterName(row - 1));
    if (hexSelectorType_ != AllCharsTable) return;
    flgLowChars.Rows(allCharsRows);
    for (int32_t row = lowCharsRows; row < allCharsRows; ++row) {
        const int32_t code = row - 1;
        fillRow(row, code < firstUnprintable ? std::wstring(1, static_cast<wchar_t>(code)) : L"");
    }
}

// Only a click takes the row over: a row reached with the arrow keys is not
// what OK gives.
void frmProtocolHexSelector::flgLowChars_Click() {
    const int32_t row = flgLowChars.Row();
    if (row < flgLowChars.FixedRows()) return;
    SelectedValue = static_cast<uint8_t>(std::stoi(flgLowChars.TextMatrix(row, colDec)));
}

void frmProtocolHexSelector::flgLowChars_DblClick() { cmdOk_Click(); }

void frmProtocolHexSelector::cmdOk_Click() {
    IsAccepted = true;
    Hide();
}

void frmProtocolHexSelector::cmdCancel_Click() {
    IsAccepted = false;
    Hide();
}

void frmProtocolHexSelector::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii == keyEscape) cmdCancel_Click();
}

}  // namespace qx
