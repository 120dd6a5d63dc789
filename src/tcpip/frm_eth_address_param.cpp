#include "tcpip/frm_eth_address_param.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t memoryMode = 1;
constexpr int32_t memoryInteger = 3;
// An IP address takes four consecutive MIs.
constexpr int32_t ipVectorLength = 4;
constexpr int32_t portMaximum = 32767;

// The four octets of a dotted address; nothing unless each is 0 to 255.
std::optional<std::array<int32_t, 4>> octetsOf(const std::wstring& text) {
    std::array<int32_t, 4> octets{};
    size_t start = 0;
    for (size_t i = 0; i < octets.size(); ++i) {
        size_t dot = text.find(L'.', start);
        if ((i + 1 < octets.size()) == (dot == std::wstring::npos)) return std::nullopt;
        std::wstring field = text.substr(start, dot == std::wstring::npos ? std::wstring::npos : dot - start);
        if (field.empty() || field.size() > 3 || field.find_first_not_of(L"0123456789") != std::wstring::npos)
            return std::nullopt;
        octets[i] = std::stoi(field);
        if (octets[i] > 255) return std::nullopt;
        start = dot + 1;
    }
    return octets;
}

// A port as the person typed it: the decimal text of a number from 1 to
// 32767 exactly, so no sign, no blank and no leading zero.
std::optional<int32_t> portOf(const std::wstring& text) {
    if (text.empty() || text.size() > 5 || text[0] == L'0' ||
        text.find_first_not_of(L"0123456789") != std::wstring::npos)
        return std::nullopt;
    int32_t value = std::stoi(text);
    if (value < 1 || value > portMaximum) return std::nullopt;
    return value;
}
}  // namespace

frmEthAddressParam::frmEthAddressParam() : Form(L"frmEthAddressParam") {
    addControls({&optConst, &ctlIPAddress, &txtConstValueEx, &optMI, &lblMI, &cmdMI, &cmdOK, &cmdCancel});
    optMI.Caption(L"Address of MI");
    cmdMI.Caption(L"...");
    cmdMI.ToolTipText(L"Link Operand to Variable");
    cmdOK.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    optConst.OnClick = [this] { optConst_Click(); };
    optMI.OnClick = [this] { optMI_Click(); };
    ctlIPAddress.OnChange = [this] { updateCmdOK(); };
    txtConstValueEx.OnChange = [this] { updateCmdOK(); };
    lblMI.OnClick = [this] { lblMI_Click(); };
    cmdMI.OnClick = [this] { cmdMI_Click(); };
    cmdOK.OnClick = [this] { cmdOK_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
}

void frmEthAddressParam::Edit(AddressParam& pParam, int32_t pKind, bool& pCanceled) {
    param_ = pParam;
    kind_ = pKind;
    canceled_ = true;
    host().Driver->ShowModal(*this);
    Unload();
    pCanceled = canceled_;
    if (!canceled_) pParam = param_;
}

void frmEthAddressParam::Form_Load() {
    std::wstring title = kind_ == eth::AddressKindIP ? L"IP Address" : L"Port";
    Caption(title);
    optConst.Caption(title);
    ctlIPAddress.Visible(kind_ == eth::AddressKindIP);
    txtConstValueEx.Visible(kind_ != eth::AddressKindIP);
    IsLoading = true;
    if (param_.Operand)
        optMI.Value(true);
    else
        optConst.Value(true);
    IsLoading = false;
    refresh();
    updateCmdOK();
}

void frmEthAddressParam::refresh() {
    bool constant = optConst.Value();
    std::wstring value = constant ? GetAddressValueText(param_, kind_) : L"";
    ctlIPAddress.Text(kind_ == eth::AddressKindIP ? value : L"");
    txtConstValueEx.Text(kind_ != eth::AddressKindIP ? value : L"");
    for (Control* entry : {static_cast<Control*>(&ctlIPAddress), static_cast<Control*>(&txtConstValueEx)}) {
        entry->Enabled(constant);
        entry->BackColor(constant ? colour::Window : colour::ButtonFace);
    }
    lblMI.Caption(optMI.Value() && param_.Operand ? param_.Operand->OperandDisplayName() : L"");
    lblMI.Enabled(optMI.Value());
    cmdMI.Enabled(optMI.Value());
}

// Either choice starts from nothing: the value and the link both go.
void frmEthAddressParam::clearParam() {
    if (IsLoading) return;
    param_ = AddressParam{};
    refresh();
    updateCmdOK();
}

void frmEthAddressParam::optConst_Click() { clearParam(); }
void frmEthAddressParam::optMI_Click() { clearParam(); }

void frmEthAddressParam::cmdMI_Click() {
    if (!param_.Operand) {
        param_.Operand = newOperand();
        param_.Operand->IsNew(true);
        param_.Operand->OperandType(memoryInteger);
    }
    param_.Operand->AddAllowedType(memoryMode, memoryInteger, true);
    if (kind_ == eth::AddressKindIP) param_.Operand->OperandVectorLength(ipVectorLength);
    EditOperandChecked(param_.Operand);
    if (param_.Operand->IsEditCanceled() && param_.Operand->IsNew()) param_.Operand.reset();
    refresh();
    updateCmdOK();
}

void frmEthAddressParam::lblMI_Click() { cmdMI_Click(); }

bool frmEthAddressParam::isEntryAcceptable() const {
    if (optMI.Value()) return param_.Operand != nullptr;
    if (!optConst.Value()) return false;
    if (kind_ == eth::AddressKindIP) {
        auto octets = octetsOf(ctlIPAddress.Text());
        return ctlIPAddress.IsValid() && octets && (*octets)[0] != 0;
    }
    return portOf(txtConstValueEx.Text()).has_value();
}

std::wstring frmEthAddressParam::inputProblem() const {
    if (optMI.Value()) return param_.Operand ? L"" : L"Address of MI must be linked to an MI: press ...";
    if (!optConst.Value()) return L"Choose a constant or an Address of MI";
    if (kind_ == eth::AddressKindIP) {
        const std::wstring& text = ctlIPAddress.Text();
        // The parts as typed, whether or not they make an address yet.
        std::vector<std::wstring> parts{L""};
        for (wchar_t ch : text) {
            if (ch == L'.')
                parts.emplace_back();
            else
                parts.back() += ch;
        }
        if (parts.size() != 4 || std::any_of(parts.begin(), parts.end(), [](const std::wstring& part) {
                return part.empty() || part.size() > 3 || part.find_first_not_of(L"0123456789") != std::wstring::npos;
            }))
            return L"IP address must be four numbers separated by dots, as in 192.168.0.10";
        for (size_t i = 0; i < parts.size(); ++i)
            if (std::stoi(parts[i]) > 255) return L"IP address part " + std::to_wstring(i + 1) + L" must be 0 to 255";
        if (std::stoi(parts[0]) == 0) return L"IP address part 1 must not be 0";
        return L"";
    }
    const std::wstring& text = txtConstValueEx.Text();
    if (text.empty() || text.size() > 5 || text.find_first_not_of(L"0123456789") != std::wstring::npos ||
        std::stoi(text) < 1 || std::stoi(text) > portMaximum)
        return L"Port must be 1 to " + std::to_wstring(portMaximum);
    if (text[0] == L'0') return L"Port must be written without leading zeros";
    return L"";
}

void frmEthAddressParam::updateCmdOK() { cmdOK.Enabled(isEntryAcceptable()); }

void frmEthAddressParam::cmdOK_Click() {
    if (!isEntryAcceptable()) return;
    if (optConst.Value()) {
        param_.Operand.reset();
        if (kind_ == eth::AddressKindIP) {
            auto octets = *octetsOf(ctlIPAddress.Text());
            uint32_t value = 0;
            for (size_t i = 0; i < octets.size(); ++i) value |= static_cast<uint32_t>(octets[i]) << (8 * i);
            param_.Value = static_cast<int32_t>(value);
        } else {
            param_.Value = *portOf(txtConstValueEx.Text());
        }
    } else {
        param_.Value = 0;
    }
    canceled_ = false;
    Hide();
}

void frmEthAddressParam::cmdCancel_Click() {
    canceled_ = true;
    Hide();
}

}  // namespace qx
