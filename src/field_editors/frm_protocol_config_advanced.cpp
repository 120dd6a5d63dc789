#include "field_editors/frm_protocol_config_advanced.h"

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"

namespace qx {

namespace {
constexpr int32_t keyEscape = 27;
constexpr int32_t iconPicture = 302;
constexpr int32_t endOfMessageETX = 1;
constexpr int32_t endOfMessageTypes = 3;
}  // namespace

frmProtocolConfigAdvanced::frmProtocolConfigAdvanced() : Form(L"frmProtocolConfigAdvanced") {
    addControls({&lbEndOfMsg, &cbEndOfMsg, &fCSConfig});
    addControls(Panel.Controls());
    addControls({&cmdOk, &cmdCancel});
    Panel.Container(&fCSConfig);
    Caption(L"End Of Message Format");
    KeyPreview(true);
    lbEndOfMsg.Caption(L"End Of Message Format :");
    fCSConfig.Caption(L"Checksum Configuration");
    cmdOk.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    cbEndOfMsg.OnClick = [this] { cbEndOfMsg_Click(); };
    cmdOk.OnClick = [this] { cmdOk_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
}

bool frmProtocolConfigAdvanced::Edit(CSVarPtr pChecksum, int32_t& pEndOfMessage) {
    objectOf(pChecksum);
    candidate_ = std::move(pChecksum);
    Panel.Candidate(candidate_);
    endOfMessage_ = pEndOfMessage;
    IsAccepted = false;
    host().Driver->ShowModal(*this);
    Unload();
    pEndOfMessage = endOfMessage_;
    // The dialog keeps nothing of its caller's.
    Panel.Candidate(nullptr);
    candidate_.reset();
    return IsAccepted;
}

void frmProtocolConfigAdvanced::Form_Load() {
    ApplyDialogFont(*this);
    load();
}

void frmProtocolConfigAdvanced::load() {
    Icon(GetDialogIcon(iconPicture));
    Panel.FillLists();
    cbEndOfMsg.Clear();
    for (int32_t type = 1; type <= endOfMessageTypes; ++type) cbEndOfMsg.AddItem(GetEndOfMessageText(type), type);
    IsLoading = true;
    cbEndOfMsg.ListIndex(FindComboIndex(cbEndOfMsg, endOfMessage_));
    if (endOfMessage_ == endOfMessageETX) enableChecksum(false);
    Panel.ShowCandidate();
    Panel.LoadSTXInCS(ChecksumPanelHost::EndOfMessageDialog, IsExtendedOperandsEnabled(), endOfMessage_);
    IsLoading = false;
}

void frmProtocolConfigAdvanced::enableChecksum(bool enabled) {
    fCSConfig.Enabled(enabled);
    Panel.Enable(enabled);
}

void frmProtocolConfigAdvanced::cbEndOfMsg_Click() {
    if (IsLoading) return;
    endOfMessage_ = cbEndOfMsg.ItemData(cbEndOfMsg.ListIndex());
    if (endOfMessage_ == endOfMessageETX) {
        // "ETX" drops the checksum's settings; the reload shows its defaults.
        enableChecksum(false);
        objectOf(candidate_).InitChecksum();
        load();
    } else {
        enableChecksum(true);
    }
}

void frmProtocolConfigAdvanced::cmdOk_Click() {
    IsAccepted = true;
    Hide();
}

void frmProtocolConfigAdvanced::cmdCancel_Click() {
    IsAccepted = false;
    Hide();
}

void frmProtocolConfigAdvanced::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii == keyEscape) cmdCancel_Click();
}

void frmProtocolConfigAdvanced::Form_Unload(int32_t&) {
    // An unloaded form's lists are empty again; filling empties all but this one.
    Panel.cbCSFromFwr.Clear();
}

}  // namespace qx
