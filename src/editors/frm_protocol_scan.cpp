#include "editors/frm_protocol_scan.h"

#include <initializer_list>
#include <string>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "sets/scan_set.h"

namespace qx {

namespace {
constexpr int32_t messageSTXCellEmpty = 149;
constexpr int32_t messageETXCellEmpty = 150;
constexpr int32_t messageNoTerminator = 151;
constexpr int32_t maxFramingLength = 4;
constexpr int32_t maxMessageLength = 500;
constexpr int32_t defaultSilenceTime = 10;
constexpr int32_t maxSilenceTime = 2000;
}  // namespace

frmProtocolScan::frmProtocolScan()
    : ScanMessageDialog(L"frmProtocolScan", L"Protocol Scan"),
      abScan(toolBar()),
      FlgScan(grid()),
      stxBytes_(
          flgSTX, gridEditor().IgnoreGridEvents,
          [this](int32_t pIndex, uint8_t pValue, bool pIsChar) { scanSet().SetScanSTXValue(pIndex, pValue, pIsChar); }),
      etxBytes_(flgETX, gridEditor().IgnoreGridEvents, [this](int32_t pIndex, uint8_t pValue, bool pIsChar) {
          scanSet().SetScanETXValue(pIndex, pValue, pIsChar);
      }) {
    addControls({&SSPanel1,    &Frame1,          &ckSTX,       &lbSTXLength,     &cbSTXLength,   &lbSTX,
                 &flgSTX,      &Frame4,          &opEndOfText, &opMessageLength, &opSilenceTime, &Frame2,
                 &lbETXLength, &cbETXLength,     &lbETX,       &flgETX,          &cmdAdvanced,   &lbETXEndOfMsg,
                 &Frame3,      &cbMessageLength, &Frame5,      &cbSilenceTime});
    SSPanel1.Caption(L"Protocol Messages");
    FlgScan.Container(&SSPanel1);
    ckSTX.Caption(L"Start Of Text (STX)");
    for (Label* length : {&lbSTXLength, &lbETXLength}) length->Caption(L"Length :");
    lbSTX.Caption(L"STX :");
    lbETX.Caption(L"ETX :");
    for (Control* control : std::initializer_list<Control*>{&ckSTX, &lbSTXLength, &cbSTXLength, &lbSTX, &flgSTX})
        control->Container(&Frame1);
    Frame4.Caption(L"Terminators");
    opEndOfText.Caption(L"End Of Text (ETX)");
    opMessageLength.Caption(L"Message Length");
    opSilenceTime.Caption(L"Silence: Duration (mS)");
    // One group: choosing one terminator unchecks the others.
    for (Control* control :
         std::initializer_list<Control*>{&opEndOfText, &opMessageLength, &opSilenceTime, &Frame2, &Frame3, &Frame5})
        control->Container(&Frame4);
    for (Control* control :
         std::initializer_list<Control*>{&lbETXLength, &cbETXLength, &lbETX, &flgETX, &cmdAdvanced, &lbETXEndOfMsg})
        control->Container(&Frame2);
    cbMessageLength.Container(&Frame3);
    cbSilenceTime.Container(&Frame5);
    cmdAdvanced.Caption(L"End Of Message");
    Label1.Caption(L"Session Complete:");

    ckSTX.OnClick = [this] { ckSTX_Click(); };
    cbSTXLength.OnClick = [this] { cbSTXLength_Click(); };
    cbETXLength.OnClick = [this] { cbETXLength_Click(); };
    cbMessageLength.OnClick = [this] { cbMessageLength_Click(); };
    cbSilenceTime.OnClick = [this] { cbSilenceTime_Click(); };
    opEndOfText.OnClick = [this] { opEndOfText_Click(); };
    opMessageLength.OnClick = [this] { opMessageLength_Click(); };
    opSilenceTime.OnClick = [this] { opSilenceTime_Click(); };
    flgSTX.OnKeyPress = [this](int32_t& KeyAscii) { flgSTX_KeyPress(KeyAscii); };
    flgSTX.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) { flgSTX_KeyDown(KeyCode, Shift); };
    flgSTX.OnDblClick = [this] { flgSTX_DblClick(); };
    flgETX.OnKeyPress = [this](int32_t& KeyAscii) { flgETX_KeyPress(KeyAscii); };
    flgETX.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) { flgETX_KeyDown(KeyCode, Shift); };
    flgETX.OnDblClick = [this] { flgETX_DblClick(); };
    cmdAdvanced.OnClick = [this] { cmdAdvanced_Click(); };
    // The index of the received message may stay open.
    requireLinks(2);
}

void frmProtocolScan::Edit(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                           bool& pConfirmed) {
    editScan(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

// --- Loading ---

void frmProtocolScan::loadOwnControls() {
    for (Grid* framing : {&flgSTX, &flgETX}) framing->Row(0);
    for (ComboBox* length : {&cbSTXLength, &cbETXLength}) {
        length->Clear();
        for (int32_t n = 1; n <= maxFramingLength; ++n) length->AddItem(std::to_wstring(n), n);
    }
    cbMessageLength.Clear();
    for (int32_t n = 1; n <= maxMessageLength; ++n) cbMessageLength.AddItem(std::to_wstring(n), n);
    cbSilenceTime.Clear();
    if (IsExtendedOperandsEnabled())
        for (int32_t ms = 1; ms < defaultSilenceTime; ++ms) cbSilenceTime.AddItem(std::to_wstring(ms), ms);
    for (int32_t ms = defaultSilenceTime; ms <= maxSilenceTime; ms += 5) cbSilenceTime.AddItem(std::to_wstring(ms), ms);
}

void frmProtocolScan::LoadDialog() {
    loadMessagesAndLinks();
    ResetFramingControls();
    clsProtocolScanSrv& set = scanSet();
    ckSTX.Enabled(true);
    if (set.ScanSTXLength() > 0) showSTX();
    for (OptionButton* option : {&opEndOfText, &opMessageLength, &opSilenceTime}) option->Enabled(true);
    if (set.ScanETXLength() > 0) {
        showETX();
    } else if (set.MessageLengthValue() > 0) {
        opMessageLength.Value(true);
        enableList(cbMessageLength, true);
        cbMessageLength.ListIndex(FindComboIndex(cbMessageLength, set.MessageLengthValue()));
    } else if (set.SilenceTimeValue() > 0) {
        opSilenceTime.Value(true);
        enableList(cbSilenceTime, true);
        // A value that is not in the list shows the first item; the set
        // keeps it until the person picks one.
        cbSilenceTime.ListIndex(FindComboIndex(cbSilenceTime, set.SilenceTimeValue()));
    }
    gridEditor().IgnoreGridEvents = false;
    UpdateOKEnabled();
}

void frmProtocolScan::showSTX() {
    clsProtocolScanSrv& set = scanSet();
    const int32_t length = set.ScanSTXLength();
    ckSTX.Value(CheckBox::Checked);
    for (Control* control : std::initializer_list<Control*>{&lbSTXLength, &cbSTXLength, &lbSTX, &flgSTX})
        control->Enabled(true);
    cbSTXLength.BackColor(EnabledBackColor);
    flgSTX.BackColor(EnabledBackColor);
    cbSTXLength.ListIndex(FindComboIndex(cbSTXLength, length));
    FramingGrid::SetFramingColumns(flgSTX, length);
    FramingGrid::FillFramingGrid(flgSTX, set.ScanSTXChars(), length);
}

void frmProtocolScan::showETX() {
    clsProtocolScanSrv& set = scanSet();
    const int32_t length = set.ScanETXLength();
    opEndOfText.Value(true);
    for (Control* control :
         std::initializer_list<Control*>{&lbETXLength, &cbETXLength, &lbETX, &flgETX, &cmdAdvanced, &lbETXEndOfMsg})
        control->Enabled(true);
    for (Control* control : std::initializer_list<Control*>{&cbETXLength, &flgETX, &lbETXEndOfMsg})
        control->BackColor(EnabledBackColor);
    showEndOfMessage();
    cbETXLength.ListIndex(FindComboIndex(cbETXLength, length));
    FramingGrid::SetFramingColumns(flgETX, length);
    FramingGrid::FillFramingGrid(flgETX, set.ScanETXChars(), length);
}

void frmProtocolScan::ResetFramingControls() {
    IgnoreEvents ignore(gridEditor());
    for (Control* control : std::initializer_list<Control*>{&lbSTXLength, &cbSTXLength, &lbSTX, &flgSTX, &lbETXLength,
                                                            &cbETXLength, &lbETX, &flgETX, &cmdAdvanced, &lbETXEndOfMsg,
                                                            &cbMessageLength, &cbSilenceTime})
        control->Enabled(false);
    for (Control* control : std::initializer_list<Control*>{&cbSTXLength, &flgSTX, &cbETXLength, &flgETX,
                                                            &lbETXEndOfMsg, &cbMessageLength, &cbSilenceTime})
        control->BackColor(DisabledBackColor);
    lbETXEndOfMsg.Caption(L"");
    for (ComboBox* list : {&cbSTXLength, &cbETXLength, &cbMessageLength, &cbSilenceTime}) list->ListIndex(-1);
    ckSTX.Value(CheckBox::Unchecked);
    ckSTX.Enabled(false);
    for (OptionButton* option : {&opEndOfText, &opMessageLength, &opSilenceTime}) {
        option->Value(false);
        option->Enabled(false);
    }
}

void frmProtocolScan::showEndOfMessage() {
    lbETXEndOfMsg.Caption(GetEndOfMessageText(scanSet().EndOfScanMessageType()));
}

void frmProtocolScan::enableList(ComboBox& list, bool on) {
    list.Enabled(on);
    list.BackColor(on ? EnabledBackColor : DisabledBackColor);
}

// --- Start of text ---

void frmProtocolScan::ckSTX_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    IgnoreEvents ignore(gridEditor());
    const bool on = ckSTX.Value() == CheckBox::Checked;
    for (Control* control : std::initializer_list<Control*>{&lbSTXLength, &cbSTXLength, &lbSTX, &flgSTX})
        control->Enabled(on);
    cbSTXLength.BackColor(on ? EnabledBackColor : DisabledBackColor);
    flgSTX.BackColor(on ? EnabledBackColor : DisabledBackColor);
    FramingGrid::SetFramingColumns(flgSTX, 1);
    if (on) {
        cbSTXLength.ListIndex(0);
        scanSet().ScanSTXLength(1);
        flgSTX.SetFocus();
        return;
    }
    scanSet().ScanSTXLength(0);
    cbSTXLength.ListIndex(-1);
    scanSet().ClearScanSTX();
    FramingGrid::ClearFramingGrid(flgSTX);
}

void frmProtocolScan::cbSTXLength_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    const int32_t index = cbSTXLength.ListIndex();
    if (index < 0) return;
    const int32_t length = cbSTXLength.ItemData(index);
    scanSet().ScanSTXLength(length);
    FramingGrid::SetFramingColumns(flgSTX, length);
    // A new length wipes every byte, also those that would still fit.
    scanSet().ClearScanSTX();
    FramingGrid::ClearFramingGrid(flgSTX);
    flgSTX.SetFocus();
}

// --- Terminators ---

void frmProtocolScan::cbETXLength_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    const int32_t index = cbETXLength.ListIndex();
    if (index < 0) return;
    const int32_t length = cbETXLength.ItemData(index);
    scanSet().ScanETXLength(length);
    FramingGrid::SetFramingColumns(flgETX, length);
    scanSet().ClearScanETX();
    FramingGrid::ClearFramingGrid(flgETX);
    // Clearing the end characters puts the end of message back to "ETX".
    showEndOfMessage();
    flgETX.SetFocus();
}

void frmProtocolScan::cbMessageLength_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    const int32_t index = cbMessageLength.ListIndex();
    if (index >= 0) scanSet().MessageLengthValue(cbMessageLength.ItemData(index));
}

void frmProtocolScan::cbSilenceTime_Click() {
    if (gridEditor().IgnoreGridEvents) return;
    const int32_t index = cbSilenceTime.ListIndex();
    if (index >= 0) scanSet().SilenceTimeValue(cbSilenceTime.ItemData(index));
}

void frmProtocolScan::opEndOfText_Click() {
    if (gridEditor().IgnoreGridEvents || !opEndOfText.Value()) return;
    IgnoreEvents ignore(gridEditor());
    showEndOfMessage();
    scanSet().MessageLengthValue(0);
    scanSet().SilenceTimeValue(0);
    EnableMessageLength(false);
    EnableSilenceTime(false);
    EnableETXControls(true);
}

void frmProtocolScan::opMessageLength_Click() {
    if (gridEditor().IgnoreGridEvents || !opMessageLength.Value()) return;
    IgnoreEvents ignore(gridEditor());
    EnableETXControls(false);
    EnableSilenceTime(false);
    EnableMessageLength(true);
}

void frmProtocolScan::opSilenceTime_Click() {
    if (gridEditor().IgnoreGridEvents || !opSilenceTime.Value()) return;
    IgnoreEvents ignore(gridEditor());
    EnableETXControls(false);
    EnableMessageLength(false);
    EnableSilenceTime(true);
}

void frmProtocolScan::EnableETXControls(bool on) {
    const uint32_t back = on ? EnabledBackColor : DisabledBackColor;
    for (Control* control :
         std::initializer_list<Control*>{&cmdAdvanced, &lbETXEndOfMsg, &lbETX, &cbETXLength, &lbETXLength, &flgETX})
        control->Enabled(on);
    for (Control* control : std::initializer_list<Control*>{&lbETXEndOfMsg, &cbETXLength, &flgETX})
        control->BackColor(back);
    FramingGrid::SetFramingColumns(flgETX, 1);
    if (on) {
        cbETXLength.ListIndex(0);
        scanSet().ScanETXLength(1);
        flgETX.SetFocus();
        return;
    }
    lbETXEndOfMsg.Caption(L"");
    scanSet().ScanETXLength(0);
    cbETXLength.ListIndex(-1);
    scanSet().ClearScanETX();
    FramingGrid::ClearFramingGrid(flgETX);
}

void frmProtocolScan::EnableMessageLength(bool on) {
    enableList(cbMessageLength, on);
    scanSet().MessageLengthValue(on ? 1 : 0);
    cbMessageLength.ListIndex(on ? FindComboIndex(cbMessageLength, 1) : -1);
}

void frmProtocolScan::EnableSilenceTime(bool on) {
    enableList(cbSilenceTime, on);
    scanSet().SilenceTimeValue(on ? defaultSilenceTime : 0);
    cbSilenceTime.ListIndex(on ? FindComboIndex(cbSilenceTime, defaultSilenceTime) : -1);
}

// --- The framing grids ---

void frmProtocolScan::flgSTX_KeyPress(int32_t& KeyAscii) { stxBytes_.KeyPress(KeyAscii); }
void frmProtocolScan::flgSTX_KeyDown(int32_t& KeyCode, int32_t Shift) { stxBytes_.KeyDown(KeyCode, Shift); }
void frmProtocolScan::flgSTX_DblClick() { stxBytes_.DblClick(); }
void frmProtocolScan::flgETX_KeyPress(int32_t& KeyAscii) { etxBytes_.KeyPress(KeyAscii); }
void frmProtocolScan::flgETX_KeyDown(int32_t& KeyCode, int32_t Shift) { etxBytes_.KeyDown(KeyCode, Shift); }
void frmProtocolScan::flgETX_DblClick() { etxBytes_.DblClick(); }

void frmProtocolScan::cmdAdvanced_Click() {
    scanSet().EditScanETXAdvanced();
    showEndOfMessage();
}

// --- OK ---

bool frmProtocolScan::ValidateMessages() {
    if (!checkMessages()) return false;
    clsProtocolScanSrv& set = scanSet();
    if (set.ScanSTXLength() > 0 && !FramingGrid::CellsFilled(flgSTX, set.ScanSTXLength())) {
        ShowMessage(messageSTXCellEmpty);
        return false;
    }
    if (set.ScanETXLength() > 0 && !FramingGrid::CellsFilled(flgETX, set.ScanETXLength())) {
        ShowMessage(messageETXCellEmpty);
        return false;
    }
    // A Scan must know where a received message ends.
    if (set.ScanETXLength() == 0 && set.MessageLengthValue() == 0 && set.SilenceTimeValue() == 0) {
        ShowMessage(messageNoTerminator);
        return false;
    }
    return checkLongSegments();
}

}  // namespace qx
