#include "qt/form_views.h"

#include <QPushButton>
#include <functional>
#include <map>
#include <string>

#include "ui_frm_eth_address_param.h"
#include "ui_frm_eth_protocol_config.h"
#include "ui_frm_eth_protocol_scan.h"
#include "ui_frm_eth_protocol_send.h"
#include "ui_frm_protocol_config.h"
#include "ui_frm_protocol_config_advanced.h"
#include "ui_frm_protocol_copy_bytes.h"
#include "ui_frm_protocol_hex_selector.h"
#include "ui_frm_protocol_scan.h"
#include "ui_frm_protocol_send.h"
#include "ui_frm_protocol_send_advanced.h"
#include "ui_frm_protocol_vars.h"

namespace qx {

namespace {

template <class Ui>
void setUp(FormDialog& dialog) {
    Ui ui;
    ui.setupUi(&dialog);
}

using SetUp = std::function<void(FormDialog&)>;

const std::map<std::wstring, SetUp>& views() {
    static const std::map<std::wstring, SetUp> table = {
        {L"frmProtocolConfig", setUp<Ui::frmProtocolConfig>},
        {L"frmEthProtocolConfig", setUp<Ui::frmEthProtocolConfig>},
        {L"frmEthAddressParam", setUp<Ui::frmEthAddressParam>},
        {L"frmProtocolCopyBytes", setUp<Ui::frmProtocolCopyBytes>},
        {L"frmProtocolHexSelector", setUp<Ui::frmProtocolHexSelector>},
        {L"frmProtocolConfigAdvanced", setUp<Ui::frmProtocolConfigAdvanced>},
        {L"frmProtocolVars", setUp<Ui::frmProtocolVars>},
        {L"frmProtocolSendAdvanced", setUp<Ui::frmProtocolSendAdvanced>},
        {L"frmProtocolSend", setUp<Ui::frmProtocolSend>},
        {L"frmEthProtocolSend", setUp<Ui::frmEthProtocolSend>},
        {L"frmEthProtocolScan", setUp<Ui::frmEthProtocolScan>},
        {L"frmProtocolScan", setUp<Ui::frmProtocolScan>},
    };
    return table;
}

}  // namespace

std::unique_ptr<FormDialog> createFormView(Form& form, QWidget* parent) {
    const auto it = views().find(form.Name());
    if (it == views().end()) return nullptr;
    auto dialog = std::make_unique<FormDialog>(form, parent);
    it->second(*dialog);
    // Enter is the form's key: no button of Qt's presses itself on it.
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    return dialog;
}

}  // namespace qx
