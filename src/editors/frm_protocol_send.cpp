#include "editors/frm_protocol_send.h"

#include <initializer_list>
#include <string>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "sets/send_set.h"

namespace qx {

namespace {
constexpr int32_t messageSTXCellEmpty = 145;
constexpr int32_t messageETXCellEmpty = 146;
constexpr int32_t maxFramingLength = 4;
}  // namespace

frmProtocolSend::frmProtocolSend()
    : SendMessageDialog(L"frmProtocolSend", L"Protocol Send"),
      abSend(toolBar()),
      FlgSend(grid()),
      stxBytes_(
          flgSendSTX, gridEditor().IgnoreGridEvents,
          [this](int32_t pIndex, uint8_t pValue, bool pIsChar) { sendSet().SetSendSTXValue(pIndex, pValue, pIsChar); }),
      etxBytes_(flgSendETX, gridEditor().IgnoreGridEvents, [this](int32_t pIndex, uint8_t pValue, bool pIsChar) {
          sendSet().SetSendETXValue(pIndex, pValue, pIsChar);
      }) {
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
    return {ckSendSTX, lbSendSTXLength, cbSendSTXLength, lbSendSTX, stxBytes_, false};
}

frmProtocolSend::FramingSide frmProtocolSend::etx() {
    return {ckSendETX, lbSendETXLength, cbSendETXLength, lbSendETX, etxBytes_, true};
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
    FramingGrid::SetFramingColumns(side.Bytes.grid(), length);
    FramingGrid::FillFramingGrid(side.Bytes.grid(), side.IsETX ? set.SendETXChars() : set.SendSTXChars(), length);
}

void frmProtocolSend::enableSide(const FramingSide& side, bool on) {
    const uint32_t back = on ? EnabledBackColor : DisabledBackColor;
    for (Control* control :
         std::initializer_list<Control*>{&side.LengthLabel, &side.Length, &side.BytesLabel, &side.Bytes.grid()})
        control->Enabled(on);
    side.Length.BackColor(back);
    side.Bytes.grid().BackColor(back);
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
    FramingGrid::ClearFramingGrid(side.Bytes.grid());
}

void frmProtocolSend::ckSendSTX_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    IgnoreEvents ignore(gridEditor());
    const FramingSide side = stx();
    if (ckSendSTX.Value() == CheckBox::Checked) {
        enableSide(side, true);
        cbSendSTXLength.ListIndex(0);
        setLength(side, 1);
        FramingGrid::SetFramingColumns(flgSendSTX, 1);
        flgSendSTX.SetFocus();
        return;
    }
    enableSide(side, false);
    FramingGrid::SetFramingColumns(flgSendSTX, 1);
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
        FramingGrid::SetFramingColumns(flgSendETX, 1);
        flgSendETX.SetFocus();
        return;
    }
    enableSide(side, false);
    FramingGrid::SetFramingColumns(flgSendETX, 1);
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
    FramingGrid::SetFramingColumns(side.Bytes.grid(), length);
    // A new length wipes every byte, also those that would still fit.
    clearBytes(side);
    // Clearing the end characters puts the end of message back to "ETX".
    if (side.IsETX) showEndOfMessage();
    side.Bytes.grid().SetFocus();
}

void frmProtocolSend::cbSendSTXLength_Click() { lengthChanged(stx()); }
void frmProtocolSend::cbSendETXLength_Click() { lengthChanged(etx()); }

// --- The framing grids ---

void frmProtocolSend::flgSendSTX_KeyPress(int32_t& KeyAscii) { stxBytes_.KeyPress(KeyAscii); }
void frmProtocolSend::flgSendSTX_KeyDown(int32_t& KeyCode, int32_t Shift) { stxBytes_.KeyDown(KeyCode, Shift); }
void frmProtocolSend::flgSendSTX_DblClick() { stxBytes_.DblClick(); }
void frmProtocolSend::flgSendETX_KeyPress(int32_t& KeyAscii) { etxBytes_.KeyPress(KeyAscii); }
void frmProtocolSend::flgSendETX_KeyDown(int32_t& KeyCode, int32_t Shift) { etxBytes_.KeyDown(KeyCode, Shift); }
void frmProtocolSend::flgSendETX_DblClick() { etxBytes_.DblClick(); }

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
    if (set.SendSTXLength() > 0 && !FramingGrid::CellsFilled(flgSendSTX, set.SendSTXLength())) {
        ShowMessage(messageSTXCellEmpty);
        return false;
    }
    if (set.SendETXLength() > 0 && !FramingGrid::CellsFilled(flgSendETX, set.SendETXLength())) {
        ShowMessage(messageETXCellEmpty);
        return false;
    }
    return checkLongSegments();
}

}  // namespace qx
