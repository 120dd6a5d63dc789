#include "tcpip/frm_eth_protocol_config.h"

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"
#include "tcpip/frm_eth_address_param.h"

namespace qx {

namespace {
constexpr int32_t iconPicture = 401;
constexpr int32_t gridPointer = 201;
constexpr int32_t instanceNameLimit = 22;
constexpr int32_t messageNameTaken = 110;
constexpr int32_t defaultPort = 20000;

// Columns of the address grid.
constexpr int32_t colIndex = 0, colIP = 1, colPort = 2, colDescription = 3;
// Columns of the operand grid.
constexpr int32_t colParams = 0, colType = 1, colAddress = 2, colValue = 3, colFormat = 4, colOperandDescription = 5;

std::wstring trimmed(const std::wstring& text) {
    size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring::npos) return L"";
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

std::vector<EthAddress> newAddressTable() {
    std::vector<EthAddress> table(eth::AddressCount);
    for (int32_t i = 0; i < eth::AddressCount; ++i) {
        table[static_cast<size_t>(i)].Port.Value = defaultPort;
        table[static_cast<size_t>(i)].Description = L"Address " + std::to_wstring(i);
    }
    return table;
}
}  // namespace

frmEthProtocolConfig::frmEthProtocolConfig() : Form(L"frmEthProtocolConfig") {
    addControls({&lblName, &txtInstanceName, &vsfOperands, &fraAddresses, &vsfSlaves, &cmdClearLink, &cmdOK, &cmdCancel,
                 &cmdHelp});
    vsfSlaves.Container(&fraAddresses);
    cmdClearLink.Container(&fraAddresses);
    lblName.Caption(L"Name:");
    fraAddresses.Caption(L"Addresses");
    cmdClearLink.Caption(L"Clear Link");
    cmdOK.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");
    cmdHelp.Caption(L"Help");

    vsfOperands.Cols(6);
    vsfOperands.Rows(1);
    const wchar_t* operandHeaders[] = {L"Params", L"Type", L"Add", L"", L"Format", L"Description"};
    const int32_t operandWidths[] = {750, 600, 800, 1200, 1000, 2600};
    for (int32_t c = 0; c < 6; ++c) {
        vsfOperands.TextMatrix(0, c, operandHeaders[c]);
        vsfOperands.ColWidth(c, operandWidths[c]);
    }
    vsfSlaves.Cols(4);
    vsfSlaves.Rows(1);
    const wchar_t* slaveHeaders[] = {L"Index", L"IP Address", L"Port", L"Description"};
    const int32_t slaveWidths[] = {700, 2200, 1200, 2400};
    for (int32_t c = 0; c < 4; ++c) {
        vsfSlaves.TextMatrix(0, c, slaveHeaders[c]);
        vsfSlaves.ColWidth(c, slaveWidths[c]);
    }
    vsfSlaves.Editable(true);
    cmdClearLink.Enabled(false);

    txtInstanceName.OnChange = [this] { txtInstanceName_Change(); };
    txtInstanceName.OnGotFocus = [this] { txtInstanceName_GotFocus(); };
    vsfOperands.OnDblClick = [this] { vsfOperands_DblClick(); };
    vsfSlaves.OnBeforeEdit = [this](int32_t r, int32_t c, bool& cancel) { vsfSlaves_BeforeEdit(r, c, cancel); };
    vsfSlaves.OnStartEdit = [this](int32_t r, int32_t c, bool& cancel) { vsfSlaves_StartEdit(r, c, cancel); };
    vsfSlaves.OnClick = [this] { vsfSlaves_Click(); };
    vsfSlaves.OnAfterEdit = [this](int32_t r, int32_t c) { vsfSlaves_AfterEdit(r, c); };
    vsfSlaves.OnCellButtonClick = [this](int32_t r, int32_t c) { vsfSlaves_CellButtonClick(r, c); };
    cmdClearLink.OnClick = [this] { cmdClearLink_Click(); };
    cmdOK.OnClick = [this] { cmdOK_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
    cmdHelp.OnClick = [this] { cmdHelp_Click(); };
}

void frmEthProtocolConfig::EditOperands(itfFBMethod& pMethod, InstancesPtr pFBserver,
                                        OperandCollectionPtr& FindOnlyOperands) {
    method_ = &pMethod;
    instances_ = std::move(pFBserver);
    itfFBInstances& instances = objectOf(instances_);

    Caption(pMethod.itfFBMethod_FatherName() + L" " + pMethod.itfFBMethod_MethodName());
    Icon(clsPictureTable().GetPicture(iconPicture));
    vsfOperands.MouseIcon(clsPictureTable().GetPicture(gridPointer));
    txtInstanceName.MaxLength(clsNameLimits().Item(instanceNameLimit));

    if (!pMethod.itfFBMethod_IsNew()) {
        txtInstanceName.Text(pMethod.itfFBMethod_FatherInstanceName());
        Bytes image;
        instances.GetInstanceData(pMethod.itfFBMethod_FatherInstanceNum(), image);
        table_ = ParseAddressTableImage(image);
    } else {
        FBInstanceRecord added;
        instances.AddInstance(added);
        txtInstanceName.Text(added.InstanceName);
        pMethod.itfFBMethod_FatherInstanceNum(added.InstanceNum);
        table_ = newAddressTable();
    }

    fillOperandsGrid();
    fillAddressGrid();
    // The name's Change ran before the grids were filled; a new Config waits for its links.
    if (pMethod.itfFBMethod_IsNew())
        cmdOK.Enabled(false);
    else
        updateCmdOK();

    pMethod.itfFBMethod_IsCanceled(true);
    host().Driver->ShowModal(*this);
    if (pMethod.itfFBMethod_IsCanceled()) return;

    Bytes image = BuildAddressTableImage(table_);
    instances.SetInstanceData(pMethod.itfFBMethod_FatherInstanceNum(), image);
    FindOnlyOperands = newCollection<OperandPtr>();
    for (const EthAddress& record : table_)
        for (const AddressParam* param : {&record.IpAddress, &record.Port})
            if (param->Operand) FindOnlyOperands->Add(param->Operand);
}

void frmEthProtocolConfig::fillOperandsGrid() {
    rowOperands_.clear();
    std::vector<std::wstring> sides;
    for (auto [collection, side] :
         {std::pair{method_->itfFBMethod_InOperands(), L"IN"}, std::pair{method_->itfFBMethod_OutOperands(), L"OUT"}}) {
        if (!collection) continue;
        for (int32_t i = 1; i <= collection->Count(); ++i) {
            rowOperands_.push_back(collection->Item(i));
            sides.emplace_back(side);
        }
    }
    vsfOperands.Rows(static_cast<int32_t>(rowOperands_.size()) + 1);
    for (int32_t row = 1; row < vsfOperands.Rows(); ++row) {
        vsfOperands.TextMatrix(row, colParams, sides[static_cast<size_t>(row - 1)]);
        showOperandRow(row);
    }
}

void frmEthProtocolConfig::showOperandRow(int32_t row) {
    const clsOperand& operand = objectOf(rowOperands_[static_cast<size_t>(row - 1)]);
    std::wstring type, address, value, format, description = operand.OperandDescription();
    if (operand.OperandAddress() == -1) {
        description = operand.OperandCaption();
    } else {
        type = clsOperandTypeNames().GetName(operand.OperandType());
        format = clsOperandFormats().GetFormatName(operand.OperandFormat());
        bool constant = IsConstantOperandType(operand.OperandType());
        if (!constant) address = std::to_wstring(operand.OperandAddress());
        if (constant || operand.HasValue())
            value = clsOperandFormats().GetValueText(operand.OperandType(), operand.OperandFormat(),
                                                     operand.OperandConstantValue());
    }
    vsfOperands.TextMatrix(row, colType, type);
    vsfOperands.TextMatrix(row, colAddress, address);
    vsfOperands.TextMatrix(row, colValue, value);
    vsfOperands.TextMatrix(row, colFormat, format);
    vsfOperands.TextMatrix(row, colOperandDescription, description);
}

void frmEthProtocolConfig::fillAddressGrid() {
    vsfSlaves.Rows(static_cast<int32_t>(table_.size()) + 1);
    for (int32_t row = 1; row < vsfSlaves.Rows(); ++row) {
        const EthAddress& record = table_[static_cast<size_t>(row - 1)];
        vsfSlaves.TextMatrix(row, colIndex, std::to_wstring(row - 1));
        vsfSlaves.TextMatrix(row, colIP, GetAddressParamText(record.IpAddress, eth::AddressKindIP));
        vsfSlaves.TextMatrix(row, colPort, GetAddressParamText(record.Port, eth::AddressKindPort));
        vsfSlaves.TextMatrix(row, colDescription, record.Description);
    }
}

EthAddress& frmEthProtocolConfig::recordOfRow(int32_t row) {
    if (row < 1 || static_cast<size_t>(row) > table_.size()) raiseError(err::SubscriptOutOfRange);
    return table_[static_cast<size_t>(row - 1)];
}

void frmEthProtocolConfig::Form_Activate() {
    if (!isFirstActivate_) return;
    isFirstActivate_ = false;
    if (!method_->itfFBMethod_IsNew()) return;
    // A new Config walks the person through every operand in turn; a Cancel ends the walk.
    for (int32_t row = 1; row < vsfOperands.Rows(); ++row) {
        vsfOperands.Row(row);
        OperandPtr& operand = rowOperands_[static_cast<size_t>(row - 1)];
        EditOperandChecked(operand);
        if (operand->IsEditCanceled()) break;
        showOperandRow(row);
    }
    updateCmdOK();
}

void frmEthProtocolConfig::editOperandOfRow(int32_t row) {
    OperandPtr& operand = rowOperands_[static_cast<size_t>(row - 1)];
    EditOperandChecked(operand);
    if (!operand->IsEditCanceled()) showOperandRow(row);
    updateCmdOK();
}

void frmEthProtocolConfig::vsfOperands_DblClick() {
    int32_t row = vsfOperands.MouseRow();
    if (row <= 0 || row >= vsfOperands.Rows()) return;
    editOperandOfRow(row);
}

void frmEthProtocolConfig::updateCmdOK() {
    bool operandsLinked = true;
    for (const OperandPtr& operand : rowOperands_)
        if (operand->IsNew()) operandsLinked = false;
    cmdOK.Enabled(operandsLinked && !trimmed(txtInstanceName.Text()).empty() && vsfSlaves.Rows() > 1);
}

std::wstring frmEthProtocolConfig::inputProblem() const {
    const std::wstring& name = txtInstanceName.Text();
    if (trimmed(name).empty()) return L"Name must not be empty";
    if (instances_ && method_) {
        bool isEmpty = true;
        std::vector<FBInstanceRecord> others;
        instances_->GetInstances(isEmpty, others);
        for (const FBInstanceRecord& other : others)
            if (other.InstanceNum != method_->itfFBMethod_FatherInstanceNum() && other.InstanceName == name)
                return L"Name \"" + name + L"\" is already used by another instance";
    }
    for (size_t i = 0; i < rowOperands_.size(); ++i)
        if (const auto row = static_cast<int32_t>(i) + 1; rowOperands_[i]->IsNew() && row < vsfOperands.Rows()) {
            return vsfOperands.TextMatrix(row, colParams) + L" operand \"" +
                   vsfOperands.TextMatrix(row, colOperandDescription) + L"\" must be linked: double-click its row";
        }
    if (vsfSlaves.Rows() <= 1) return L"Addresses must hold at least one row";
    return L"";
}

void frmEthProtocolConfig::updateCmdClearLink() {
    int32_t row = vsfSlaves.Row();
    bool filled = false;
    if (row > 0)
        for (int32_t col : {colIP, colPort, colDescription})
            if (!vsfSlaves.TextMatrix(row, col).empty()) filled = true;
    cmdClearLink.Enabled(filled);
}

void frmEthProtocolConfig::vsfSlaves_BeforeEdit(int32_t, int32_t Col, bool&) {
    vsfSlaves.EditMaxLength(eth::DescriptionLength);
    vsfSlaves.ComboList(Col == colIP || Col == colPort ? Grid::EllipsisButton : L"");
    updateCmdClearLink();
}

void frmEthProtocolConfig::vsfSlaves_StartEdit(int32_t, int32_t Col, bool& Cancel) {
    // IP and port change through their own dialog only; their cells show the result.
    if (Col != colDescription) Cancel = true;
}

void frmEthProtocolConfig::vsfSlaves_Click() {
    if (vsfSlaves.Col() == colDescription) vsfSlaves.EditCell();
}

void frmEthProtocolConfig::vsfSlaves_AfterEdit(int32_t Row, int32_t Col) {
    if (Col == colDescription) recordOfRow(Row).Description = vsfSlaves.TextMatrix(Row, Col);
    updateCmdClearLink();
}

void frmEthProtocolConfig::vsfSlaves_CellButtonClick(int32_t Row, int32_t Col) {
    if (Col != colIP && Col != colPort) return;
    EthAddress& record = recordOfRow(Row);
    AddressParam& target = Col == colIP ? record.IpAddress : record.Port;
    int32_t kind = Col == colIP ? eth::AddressKindIP : eth::AddressKindPort;
    AddressParam copy = target;
    if (copy.Operand) copy.Operand = CloneOperand(*copy.Operand);
    bool canceled = true;
    frmEthAddressParam().Edit(copy, kind, canceled);
    if (canceled) return;
    vsfSlaves.TextMatrix(Row, Col, GetAddressParamText(copy, kind));
    target = std::move(copy);
    updateCmdClearLink();
}

void frmEthProtocolConfig::cmdClearLink_Click() {
    int32_t row = vsfSlaves.Row();
    if (row <= 0) return;
    recordOfRow(row) = EthAddress{};
    for (int32_t col : {colIP, colPort, colDescription}) vsfSlaves.TextMatrix(row, col, L"");
    updateCmdClearLink();
}

void frmEthProtocolConfig::txtInstanceName_Change() {
    if (hasForbiddenNameCharacter(txtInstanceName.Text())) {
        // The whole input goes, not only the bad character.
        systemBeep();
        txtInstanceName.Text(L"");
    }
    updateCmdOK();
}

// However the box is reached, by a click, by a key or from code, the whole
// name is selected, so that what is typed next replaces it.
void frmEthProtocolConfig::txtInstanceName_GotFocus() {
    txtInstanceName.SelStart(0);
    txtInstanceName.SelLength(static_cast<int32_t>(txtInstanceName.Text().size()));
}

void frmEthProtocolConfig::cmdOK_Click() {
    std::wstring name = txtInstanceName.Text();
    bool isEmpty = true;
    std::vector<FBInstanceRecord> others;
    instances_->GetInstances(isEmpty, others);
    for (const FBInstanceRecord& other : others) {
        if (other.InstanceNum != method_->itfFBMethod_FatherInstanceNum() && other.InstanceName == name) {
            ShowMessage(messageNameTaken);
            return;
        }
    }
    FBInstanceRecord record{method_->itfFBMethod_FatherInstanceNum(), name};
    // The host may renumber the instance.
    instances_->UpdateInstance(record);
    method_->itfFBMethod_FatherInstanceNum(record.InstanceNum);
    method_->itfFBMethod_IsCanceled(false);
    Hide();
}

void frmEthProtocolConfig::cmdCancel_Click() {
    method_->itfFBMethod_IsCanceled(true);
    // A new instance lives only as long as its first dialog.
    if (method_->itfFBMethod_IsNew()) instances_->DeleteInstance(method_->itfFBMethod_FatherInstanceNum());
    Hide();
}

void frmEthProtocolConfig::cmdHelp_Click() { instances_->ShowFBHelp((method_->itfFBMethod_MethodID() / 100) * 100); }

}  // namespace qx
