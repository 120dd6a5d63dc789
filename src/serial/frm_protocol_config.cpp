#include "serial/frm_protocol_config.h"

#include <string>
#include <utility>

#include "framework/fb_method_base.h"
#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"
#include "serial/protocol_config.h"

namespace qx {

namespace {
// A label's caption as the name of its field: no colon, no double blanks.
std::wstring fieldName(std::wstring caption) {
    for (size_t at; (at = caption.find(L"  ")) != std::wstring::npos;) caption.erase(at, 1);
    while (!caption.empty() && (caption.back() == L' ' || caption.back() == L':')) caption.pop_back();
    return caption;
}
constexpr int32_t keyEscape = 27;
constexpr int32_t iconPicture = 302;
constexpr int32_t instanceNameLimit = 22;
constexpr int32_t messageNameEmpty = 152;
constexpr int32_t messageNameTaken = 153;
}  // namespace

frmProtocolConfig::frmProtocolConfig() : Form(L"frmProtocolConfig") {
    addControls({&lblName, &txtInstanceName, &lblComport, &cbComport, &lblOpFail, &lbOpFail, &cmdFailLink, &lblStatusOp,
                 &lbStatusOp, &cmdStatusOp, &cmdOk, &cmdCancel, &cmdHelp});
    Caption(L"Protocol Configuration");
    KeyPreview(true);
    lblName.Caption(L"Name :");
    lblComport.Caption(L"Com Port :");
    lblOpFail.Caption(L"Function in progress :");
    lblStatusOp.Caption(L"Status :");
    for (CommandButton* link : {&cmdFailLink, &cmdStatusOp}) {
        link->Caption(L"...");
        link->ToolTipText(L"Link Operand to Variable");
    }
    cmdOk.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");
    cmdHelp.Caption(L"Help");

    txtInstanceName.OnChange = [this] { txtInstanceName_Change(); };
    cbComport.OnClick = [this] { cbComport_Click(); };
    lbOpFail.OnClick = [this] { lbOpFail_Click(); };
    cmdFailLink.OnClick = [this] { cmdFailLink_Click(); };
    lbStatusOp.OnClick = [this] { lbStatusOp_Click(); };
    cmdStatusOp.OnClick = [this] { cmdStatusOp_Click(); };
    cmdOk.OnClick = [this] { cmdOk_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
    cmdHelp.OnClick = [this] { cmdHelp_Click(); };
}

bool frmProtocolConfig::Edit(clsProtocolConfigSrv& pConfigSrv, itfFBMethod& pConfigMethod) {
    srv_ = &pConfigSrv;
    method_ = &pConfigMethod;
    result_ = false;
    host().Driver->ShowModal(*this);
    Unload();
    return result_;
}

OperandPtr frmProtocolConfig::operand(int32_t index) const { return outOperandAt(*method_, index); }

void frmProtocolConfig::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);

    cbComport.AddItem(L"COM1", 1);
    cbComport.AddItem(L"COM2", 2);
    cbComport.AddItem(L"COM3", 3);

    IsLoading = true;
    lbOpFail.Caption(GetOperandDisplayText(*operand(1)));
    lbStatusOp.Caption(GetOperandDisplayText(*operand(2)));
    txtInstanceName.Text(srv_->InstanceName());
    // A port the list does not know selects COM1 here, but stays in the Srv object until a click.
    cbComport.ListIndex(FindComboIndex(cbComport, srv_->ComPort()));
    IsLoading = false;
    updateCmdOk();

    txtInstanceName.MaxLength(clsNameLimits().Item(instanceNameLimit));
    isFirstActivate_ = true;
}

void frmProtocolConfig::Form_Activate() {
    if (!isFirstActivate_) return;
    isFirstActivate_ = false;
    // A new Config walks the person through both links before any other input.
    if (!operand(1)->IsNew() || !operand(2)->IsNew()) return;
    cmdFailLink_Click();
    if (!operand(1)->IsNew()) cmdStatusOp_Click();
}

void frmProtocolConfig::linkOperand(int32_t index, Label& display) {
    OperandPtr link = operand(index);
    link->EditOperand();
    if (!link->IsNew()) display.Caption(GetOperandDisplayText(*link));
    updateCmdOk();
}

void frmProtocolConfig::cmdFailLink_Click() { linkOperand(1, lbOpFail); }
void frmProtocolConfig::lbOpFail_Click() { linkOperand(1, lbOpFail); }
void frmProtocolConfig::cmdStatusOp_Click() { linkOperand(2, lbStatusOp); }
void frmProtocolConfig::lbStatusOp_Click() { linkOperand(2, lbStatusOp); }

void frmProtocolConfig::updateCmdOk() { cmdOk.Enabled(!operand(1)->IsNew() && !operand(2)->IsNew()); }

std::wstring frmProtocolConfig::inputProblem() const {
    if (txtInstanceName.Text().empty()) return L"Name must not be empty";
    for (auto [index, caption] : {std::pair{1, &lblOpFail}, std::pair{2, &lblStatusOp}})
        if (operand(index)->IsNew()) return L"\"" + fieldName(caption->Caption()) + L"\" must be linked: press ...";
    return L"";
}

void frmProtocolConfig::cbComport_Click() {
    if (IsLoading) return;
    srv_->ComPort(cbComport.ItemData(cbComport.ListIndex()));
}

void frmProtocolConfig::txtInstanceName_Change() {
    if (IsLoading) return;
    if (!hasForbiddenNameCharacter(txtInstanceName.Text())) return;
    // The whole input goes, not only the bad character.
    IsLoading = true;
    txtInstanceName.Text(L"");
    IsLoading = false;
    systemBeep();
}

void frmProtocolConfig::cmdOk_Click() {
    srv_->InstanceName(txtInstanceName.Text());
    if (srv_->InstanceName().empty()) {
        ShowMessage(messageNameEmpty);
        return;
    }
    if (!srv_->IsInstanceNameLegal()) {
        ShowMessage(messageNameTaken);
        return;
    }
    endDialog(true);
}

void frmProtocolConfig::cmdCancel_Click() { endDialog(false); }

void frmProtocolConfig::cmdHelp_Click() { srv_->ShowHelp(); }

void frmProtocolConfig::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii == keyEscape) cmdCancel_Click();
}

void frmProtocolConfig::endDialog(bool result) {
    result_ = result;
    Hide();
}

}  // namespace qx
