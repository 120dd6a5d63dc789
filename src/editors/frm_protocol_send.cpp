#include "editors/frm_protocol_send.h"

#include <initializer_list>
#include <string>
#include <utility>

#include "field_editors/frm_protocol_hex_selector.h"
#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/basics/ansi.h"
#include "sets/send_set.h"

namespace qx {

namespace {
constexpr int32_t messageSTXCellEmpty = 145;
constexpr int32_t messageETXCellEmpty = 146;
constexpr int32_t maxFramingLength = 4;

// Two upper-case hexadecimal digits.
std::wstring hexOf(uint8_t value) {
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    return {digits[value >> 4], digits[value & 0xF]};
}

// The byte of a key: an ANSI code as it is, a wider character mapped.
uint8_t byteOfKey(int32_t KeyAscii) {
    if (KeyAscii >= 0 && KeyAscii <= 0xFF) return static_cast<uint8_t>(KeyAscii);
    return toAnsiByte(static_cast<wchar_t>(KeyAscii));
}
}  // namespace

frmProtocolSend::frmProtocolSend()
    : SendMessageDialog(L"frmProtocolSend", L"Protocol Send"), abSend(toolBar()), FlgSend(grid()) {
    addControls({&SSPanel1, &ckSendSTX, &Frame8, &lbSendSTXLength, &cbSendSTXLength, &lbSendSTX, &flgSendSTX,
                 &ckSendETX, &Frame9, &lbSendETXLength, &cbSendETXLength, &lbSendETX, &flgSendETX, &cmdSendAdvanced,
                 &lbSendETXEndOfMsg, &cmdAdvanced});
    SSPanel1.Caption(L"Protocol Messages");
    FlgSend.Container(&SSPanel1);
    ckSendSTX.Caption(L"Start Of Text (STX)");
    ckSendETX.Caption(L"End Of Text (ETX)");
    for (Label* length : {&lbSendSTXLength, &lbSendETXLength}) length->Caption(L"Length :");
    lbSendSTX.Caption(L"STX :");
    lbSendETX.Caption(L"ETX :");
    for (Control* control :
         std::initializer_list<Control*>{&lbSendSTXLength, &cbSendSTXLength, &lbSendSTX, &flgSendSTX})
        control->Container(&Frame8);
    for (Control* control : std::initializer_list<Control*>{&lbSendETXLength, &cbSendETXLength, &lbSendETX, &flgSendETX,
                                                            &cmdSendAdvanced, &lbSendETXEndOfMsg})
        control->Container(&Frame9);
    cmdSendAdvanced.Caption(L"End Of Message");
    cmdAdvanced.Caption(L"Advanced...");
    for (Grid* framing : {&flgSendSTX, &flgSendETX}) {
        framing->FixedRows(0);
        framing->FixedCols(0);
        framing->Rows(1);
        SetFramingColumns(*framing, 1);
    }

    ckSendSTX.OnClick = [this] { ckSendSTX_Click(); };
    ckSendETX.OnClick = [this] { ckSendETX_Click(); };
    cbSendSTXLength.OnClick = [this] { cbSendSTXLength_Click(); };
    cbSendETXLength.OnClick = [this] { cbSendETXLength_Click(); };
    flgSendSTX.OnKeyPress = [this](int32_t& KeyAscii) { flgSendSTX_KeyPress(KeyAscii); };
    flgSendSTX.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) { flgSendSTX_KeyDown(KeyCode, Shift); };
    flgSendSTX.OnDblClick = [this] { flgSendSTX_DblClick(); };
    flgSendETX.OnKeyPress = [this](int32_t& KeyAscii) { flgSendETX_KeyPress(KeyAscii); };
    flgSendETX.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) { flgSendETX_KeyDown(KeyCode, Shift); };
    flgSendETX.OnDblClick = [this] { flgSendETX_DblClick(); };
    cmdSendAdvanced.OnClick = [this] { cmdSendAdvanced_Click(); };
    cmdAdvanced.OnClick = [this] { cmdAdvanced_Click(); };
}

void frmProtocolSend::Edit(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                           bool& pConfirmed) {
    pConfirmed = false;
    if (!beginSendEdit(pSendSrv, pFBMethod, std::move(pFBInstances))) {
        dropReferences();
        Unload();
        return;
    }
    pConfirmed = runModal();
}

frmProtocolSend::FramingSide frmProtocolSend::stx() {
    return {ckSendSTX, lbSendSTXLength, cbSendSTXLength, lbSendSTX, flgSendSTX, false};
}

frmProtocolSend::FramingSide frmProtocolSend::etx() {
    return {ckSendETX, lbSendETXLength, cbSendETXLength, lbSendETX, flgSendETX, true};
}

// --- Loading ---

void frmProtocolSend::loadOwnControls() {
    for (Grid* framing : {&flgSendSTX, &flgSendETX}) framing->Row(0);
    for (ComboBox* length : {&cbSendSTXLength, &cbSendETXLength}) {
        length->Clear();
        for (int32_t n = 1; n <= maxFramingLength; ++n) length->AddItem(std::to_wstring(n), n);
    }
}

void frmProtocolSend::LoadDialog() {
    loadMessagesAndLink();
    ResetFramingControls();
    gridEditor().IgnoreGridEvents = true;
    ckSendSTX.Enabled(true);
    ckSendETX.Enabled(true);
    clsProtocolSendSrv& set = sendSet();
    if (set.SendSTXLength() > 0) showSide(stx());
    if (set.SendETXLength() > 0) showSide(etx());
    gridEditor().IgnoreGridEvents = false;
    UpdateOKEnabled();
}

void frmProtocolSend::ResetFramingControls() {
    enableSide(stx(), false);
    enableSide(etx(), false);
    for (CheckBox* check : {&ckSendSTX, &ckSendETX}) {
        check->Value(CheckBox::Unchecked);
        check->Enabled(false);
    }
}

void frmProtocolSend::showSide(const FramingSide& side) {
    clsProtocolSendSrv& set = sendSet();
    const int32_t length = side.IsETX ? set.SendETXLength() : set.SendSTXLength();
    side.Check.Value(CheckBox::Checked);
    enableSide(side, true);
    side.Length.ListIndex(FindComboIndex(side.Length, length));
    SetFramingColumns(side.Bytes, length);
    FillFramingGrid(side.Bytes, side.IsETX ? set.SendETXChars() : set.SendSTXChars(), length);
}

void frmProtocolSend::enableSide(const FramingSide& side, bool on) {
    const uint32_t back = on ? EnabledBackColor : DisabledBackColor;
    for (Control* control :
         std::initializer_list<Control*>{&side.LengthLabel, &side.Length, &side.BytesLabel, &side.Bytes})
        control->Enabled(on);
    side.Length.BackColor(back);
    side.Bytes.BackColor(back);
    if (!side.IsETX) return;
    cmdSendAdvanced.Enabled(on);
    lbSendETXEndOfMsg.Enabled(on);
    lbSendETXEndOfMsg.BackColor(back);
    if (on)
        showEndOfMessage();
    else
        lbSendETXEndOfMsg.Caption(L"");
}

void frmProtocolSend::showEndOfMessage() {
    lbSendETXEndOfMsg.Caption(GetEndOfMessageText(sendSet().EndOfSendMessageType()));
}

void frmProtocolSend::SetFramingColumns(Grid& grid, int32_t n) {
    grid.Cols(n);
    for (int32_t c = 0; c < n; ++c) {
        grid.ColWidth(c, FramingColumnWidth);
        grid.ColAlignment(c, Grid::AlignCenterCenter);
    }
    if (grid.Rows() > 0) grid.Col(0);
}

void frmProtocolSend::FillFramingGrid(Grid& grid, const FrameChars& bytes, int32_t n) {
    for (int32_t i = 0; i < n && i < static_cast<int32_t>(bytes.size()); ++i) {
        const FrameChar& byte = bytes[static_cast<size_t>(i)];
        if (byte.ByAscii) {
            // A typed 0 is a cell that was cleared: nothing to show.
            grid.TextMatrix(0, i, byte.Value == 0 ? std::wstring() : std::wstring(1, fromAnsiByte(byte.Value)));
        } else {
            grid.TextMatrix(0, i, hexOf(byte.Value));
            grid.CellBackColor(0, i, HexCellBackColor);
        }
    }
}

void frmProtocolSend::clearGrid(Grid& grid) {
    if (grid.Rows() > 0) grid.ClearRow(0, 0);
}

// --- Check boxes and lengths ---

void frmProtocolSend::setLength(const FramingSide& side, int32_t length) {
    if (side.IsETX)
        sendSet().SendETXLength(length);
    else
        sendSet().SendSTXLength(length);
}

void frmProtocolSend::clearBytes(const FramingSide& side) {
    if (side.IsETX)
        sendSet().ClearSendETX();
    else
        sendSet().ClearSendSTX();
    clearGrid(side.Bytes);
}

void frmProtocolSend::ckSendSTX_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    IgnoreEvents ignore(gridEditor());
    const FramingSide side = stx();
    if (ckSendSTX.Value() == CheckBox::Checked) {
        enableSide(side, true);
        cbSendSTXLength.ListIndex(0);
        setLength(side, 1);
        SetFramingColumns(flgSendSTX, 1);
        flgSendSTX.SetFocus();
        return;
    }
    enableSide(side, false);
    SetFramingColumns(flgSendSTX, 1);
    setLength(side, 0);
    cbSendSTXLength.ListIndex(-1);
    clearBytes(side);
}

void frmProtocolSend::ckSendETX_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    const FramingSide side = etx();
    if (ckSendETX.Value() == CheckBox::Checked) {
        enableSide(side, true);
        {
            IgnoreEvents ignore(gridEditor());
            cbSendETXLength.ListIndex(0);
        }
        setLength(side, 1);
        SetFramingColumns(flgSendETX, 1);
        flgSendETX.SetFocus();
        return;
    }
    enableSide(side, false);
    SetFramingColumns(flgSendETX, 1);
    setLength(side, 0);
    {
        IgnoreEvents ignore(gridEditor());
        cbSendETXLength.ListIndex(-1);
    }
    clearBytes(side);
}

void frmProtocolSend::lengthChanged(const FramingSide& side) {
    if (gridEditor().IgnoreGridEvents) return;
    const int32_t index = side.Length.ListIndex();
    if (index < 0) return;
    const int32_t length = side.Length.ItemData(index);
    setLength(side, length);
    SetFramingColumns(side.Bytes, length);
    // A new length wipes every byte, also those that would still fit.
    clearBytes(side);
    // Clearing the end characters puts the end of message back to "ETX".
    if (side.IsETX) showEndOfMessage();
    side.Bytes.SetFocus();
}

void frmProtocolSend::cbSendSTXLength_Click() { lengthChanged(stx()); }
void frmProtocolSend::cbSendETXLength_Click() { lengthChanged(etx()); }

// --- The framing grids ---

void frmProtocolSend::store(const FramingSide& side, int32_t index, uint8_t value, bool isChar) {
    if (side.IsETX)
        sendSet().SetSendETXValue(index, value, isChar);
    else
        sendSet().SetSendSTXValue(index, value, isChar);
}

void frmProtocolSend::framingKeyPress(const FramingSide& side, int32_t& KeyAscii) {
    if (gridEditor().IgnoreGridEvents) return;
    Grid& grid = side.Bytes;
    const int32_t column = grid.Col();
    const int32_t last = grid.Cols() - 1;
    if (grid.Row() < 0 || column < 0) return;
    if (KeyAscii == KeyBlank) {
        // A blank can't be typed as a byte: it only moves on.
        if (column < last) grid.Col(column + 1);
        return;
    }
    if (KeyAscii == KeyBackspace) {
        grid.TextMatrix(0, column, L"");
        grid.CellBackColor(0, column, EnabledBackColor);
        store(side, column, 0, true);
        if (column > 0) grid.Col(column - 1);
        return;
    }
    const uint8_t byte = byteOfKey(KeyAscii);
    grid.TextMatrix(0, column, std::wstring(1, fromAnsiByte(byte)));
    grid.CellBackColor(0, column, EnabledBackColor);
    store(side, column, byte, true);
    if (column < last) grid.Col(column + 1);
}

void frmProtocolSend::framingKeyDown(const FramingSide& side, int32_t& KeyCode) {
    if (gridEditor().IgnoreGridEvents || KeyCode != keys::Delete) return;
    Grid& grid = side.Bytes;
    const int32_t column = grid.Col();
    if (grid.Row() < 0 || column < 0) return;
    grid.TextMatrix(0, column, L"");
    grid.CellBackColor(0, column, EnabledBackColor);
    store(side, column, 0, true);
}

void frmProtocolSend::framingDblClick(const FramingSide& side) {
    Grid& grid = side.Bytes;
    const int32_t column = grid.Col();
    if (grid.Row() < 0 || column < 0) return;
    uint8_t value = 0;
    if (!frmProtocolHexSelector().Edit(value, frmProtocolHexSelector::LowCharsTable)) return;
    store(side, column, value, false);
    grid.TextMatrix(0, column, hexOf(value));
    grid.CellBackColor(0, column, HexCellBackColor);
}

void frmProtocolSend::flgSendSTX_KeyPress(int32_t& KeyAscii) { framingKeyPress(stx(), KeyAscii); }
void frmProtocolSend::flgSendSTX_KeyDown(int32_t& KeyCode, int32_t Shift) {
    (void)Shift;
    framingKeyDown(stx(), KeyCode);
}
void frmProtocolSend::flgSendSTX_DblClick() { framingDblClick(stx()); }
void frmProtocolSend::flgSendETX_KeyPress(int32_t& KeyAscii) { framingKeyPress(etx(), KeyAscii); }
void frmProtocolSend::flgSendETX_KeyDown(int32_t& KeyCode, int32_t Shift) {
    (void)Shift;
    framingKeyDown(etx(), KeyCode);
}
void frmProtocolSend::flgSendETX_DblClick() { framingDblClick(etx()); }

// --- Buttons ---

void frmProtocolSend::cmdSendAdvanced_Click() {
    sendSet().EditSendETXAdvanced();
    showEndOfMessage();
}

void frmProtocolSend::cmdAdvanced_Click() { sendSet().EditAdvanced(); }

// --- OK ---

bool frmProtocolSend::ValidateMessages() {
    if (!checkMessages()) return false;
    clsProtocolSendSrv& set = sendSet();
    if (set.SendSTXLength() > 0 && !framingCellsFilled(flgSendSTX, set.SendSTXLength())) {
        ShowMessage(messageSTXCellEmpty);
        return false;
    }
    if (set.SendETXLength() > 0 && !framingCellsFilled(flgSendETX, set.SendETXLength())) {
        ShowMessage(messageETXCellEmpty);
        return false;
    }
    return checkLongSegments();
}

}  // namespace qx
