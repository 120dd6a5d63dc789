#include "editors/message_dialog.h"

#include <string>
#include <utility>
#include <vector>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "platform/host/host_services.h"

namespace qx {

namespace {
constexpr int32_t iconPicture = 302;
constexpr int32_t messageNoInstances = 140;
constexpr int32_t messageLostInstance = 141;
constexpr int32_t messageEmptyMessage = 144;
const wchar_t* const longSegmentTitle = L"PROTOCOL";
}  // namespace

MessageDialog::MessageDialog(std::wstring formName, std::wstring caption, MessageGridKind kind, std::wstring gridName,
                             std::wstring toolBarName, int32_t clearAllMessage)
    : Form(std::move(formName)),
      grid_(std::move(gridName)),
      bar_(std::move(toolBarName)),
      editor_(kind, grid_, bar_),
      clearAllMessage_(clearAllMessage) {
    Caption(caption);
    // Escape reaches the dialog before its controls.
    KeyPreview(true);
    // The list before the toolbar that carries it: a view lets go of its
    // bindings in this order, and the list's must go while its widget is
    // still there.
    addControls({&cbInstanceName, &bar_, &grid_, &cmdOK, &cmdCancel, &cmdHelp});
    buildMessageToolBar(bar_, &cbInstanceName);
    cmdOK.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");
    cmdHelp.Caption(L"Help");

    bar_.OnToolClick = [this](const std::wstring& ToolId) { abTool_Click(ToolId); };
    cbInstanceName.OnClick = [this] { cbInstanceName_Click(); };
    cmdOK.OnClick = [this] { cmdOK_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    cmdHelp.OnClick = [this] { cmdHelp_Click(); };
    closeBoxActsAs([this] { CancelDialog(); });
}

itfFBMethod& MessageDialog::method() const {
    if (!method_) raiseError(err::ObjectNotSet);
    return *method_;
}

// --- Edit ---

void MessageDialog::beginEdit(MessageSource source, MessageSetOps ops, itfFBMethod& method, InstancesPtr instances) {
    editor_.setSource(std::move(source));
    ops_ = std::move(ops);
    method_ = &method;
    instances_ = std::move(instances);
    DialogResult = false;
    editor_.CurrentMessage = editor_.GetMessage(1);
    Load();
}

bool MessageDialog::loadInstancesForEdit() {
    bool noInstances = false;
    {
        IgnoreEvents ignore(editor_);
        LoadInstanceList(noInstances);
    }
    return !noInstances;
}

bool MessageDialog::runModal() {
    LoadDialog();
    host().Driver->ShowModal(*this);
    Unload();
    dropReferences();
    return DialogResult;
}

void MessageDialog::dropReferences() {
    editor_.setSource({});
    editor_.CurrentMessage.reset();
    ops_ = {};
    method_ = nullptr;
    instances_.reset();
}

void MessageDialog::Reload() { editor_.Reload(); }

// --- Loading ---

void MessageDialog::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);
    // The docked bands and the popups take the dialog's font too.
    bar_.Font(Font());
    bar_.MenuFont(Font());
    {
        IgnoreEvents ignore(editor_);
        loadOwnControls();
        editor_.BuildMessageGrid();
    }
    editor_.takeDeviceScale();
}

void MessageDialog::LoadInstanceList(bool& NoInstances) {
    NoInstances = false;
    soleInstance_ = false;
    bool isEmpty = true;
    std::vector<FBInstanceRecord> records;
    if (!instances_) raiseError(err::ObjectNotSet);
    instances_->GetInstances(isEmpty, records);
    if (isEmpty) {
        NoInstances = true;
        ShowMessage(messageNoInstances);
        return;
    }
    itfFBMethod& fb = method();
    if (records.size() == 1) {
        const int32_t only = records.front().InstanceNum;
        if (fb.itfFBMethod_IsNew()) fb.itfFBMethod_FatherInstanceNum(only);
        soleInstance_ = fb.itfFBMethod_FatherInstanceNum() == only;
        if (soleInstance_ && !fillsListAfterSoleInstance()) return;
    }
    cbInstanceName.Clear();
    for (const FBInstanceRecord& record : records) {
        cbInstanceName.AddItem(record.InstanceName, record.InstanceNum);
        if (record.InstanceNum == fb.itfFBMethod_FatherInstanceNum())
            cbInstanceName.ListIndex(cbInstanceName.NewIndex());
    }
    // The Config this operation was linked to is gone; OK waits for a choice.
    if (!fb.itfFBMethod_IsNew() && cbInstanceName.ListIndex() < 0) ShowMessage(messageLostInstance);
}

void MessageDialog::cbInstanceName_Click() {
    const int32_t index = cbInstanceName.ListIndex();
    if (index < 0 || !method_) return;
    // The choice goes into the operation at once; a Cancel keeps it.
    method_->itfFBMethod_FatherInstanceNum(cbInstanceName.ItemData(index));
    UpdateOKEnabled();
}

void MessageDialog::UpdateOKEnabled() {
    cmdOK.Enabled(cbInstanceName.ListIndex() >= 0 && method_ && method_->itfFBMethod_FatherInstanceNum() != 0);
}

std::wstring MessageDialog::inputProblem() const {
    if (cbInstanceName.ListIndex() < 0 || !method_ || method_->itfFBMethod_FatherInstanceNum() == 0)
        return L"A Config instance must be chosen from the list";
    return L"";
}

// --- Toolbar ---

void MessageDialog::abTool_Click(const std::wstring& ToolId) {
    if (editor_.runCaretCommand(ToolId)) return;
    runMessageCommand(ToolId);
}

void MessageDialog::rebuild(const std::function<bool(int32_t)>& operation, MessageGridEditor::LandingRow landing) {
    editor_.rebuildAfter(operation, landing);
    AfterMessageCountChanged();
}

void MessageDialog::runMessageCommand(const std::wstring& ToolId) {
    using Landing = MessageGridEditor::LandingRow;
    const int32_t number = grid_.Row() + 1;
    if (ToolId == tools::ID_Cut) {
        if (number < 1 || !ops_.CutMessage) return;
        ops_.CutMessage(number);
        editor_.swapRow();
        enablePasteTool(bar_);
    } else if (ToolId == tools::ID_Copy) {
        if (number < 1 || !ops_.CopyMessage) return;
        ops_.CopyMessage(number);
        enablePasteTool(bar_);
    } else if (ToolId == tools::ID_Paste) {
        if (number < 1 || !ops_.PasteMessage) return;
        ops_.PasteMessage(number);
        editor_.swapRow();
    } else if (ToolId == tools::ID_InsertBefore) {
        rebuild(ops_.InsertMessageBefore, Landing::SameRow);
    } else if (ToolId == tools::ID_InsertMsg) {
        rebuild(ops_.InsertMessage, Landing::NextRow);
    } else if (ToolId == tools::ID_AppendMsg) {
        if (!ops_.AppendMessage) return;
        rebuild([this](int32_t) { return ops_.AppendMessage(); }, Landing::LastRow);
    } else if (ToolId == tools::ID_DeleteMsg) {
        if (number < 1) return;
        // The row goes blank while the set asks; a "no" paints it back, so
        // that the grid shows what the set still holds.
        editor_.ClearMessageRow(number, editor_.CurrentMessage);
        if (!editor_.rebuildAfter(ops_.DeleteMessage, Landing::SameRow)) editor_.refreshRow();
        AfterMessageCountChanged();
    } else if (ToolId == tools::ID_ClearAll) {
        if (ShowMessage(clearAllMessage_) == 1 && ops_.ClearAll) ops_.ClearAll();
        grid_.SetFocus();
    }
}

// --- Validation ---

bool MessageDialog::checkMessagesToDownload(int32_t noMessages) {
    if (ops_.GetNumberOfMessagesToDownload && ops_.GetNumberOfMessagesToDownload() != 0) return true;
    ShowMessage(noMessages);
    return false;
}

bool MessageDialog::checkNoEmptyMessage() {
    const int32_t empty = ops_.GetEmptyMessageNumber ? ops_.GetEmptyMessageNumber() : 0;
    if (empty < 1) return true;
    // The number the grid shows, counted from 0.
    ShowMessage(messageEmptyMessage, {std::to_wstring(empty - 1)});
    return false;
}

bool MessageDialog::checkLongSegments() {
    const int32_t message = ops_.GetMessageNumberWithLongSegment ? ops_.GetMessageNumberWithLongSegment() : 0;
    if (message < 1) return true;
    MsgBox(L"Message number: " + std::to_wstring(message - 1) +
               L" is not legal.\r\nA message segment which contains fixed text may not exceed 255 characters.",
           vbExclamation, longSegmentTitle);
    return false;
}

// --- Links ---

void MessageDialog::linkOperand(clsOperand& operand, Label& display) {
    operand.EditOperand();
    if (!operand.IsNew()) display.Caption(GetOperandDisplayText(operand));
    UpdateOKEnabled();
}

// --- OK, Cancel, Help, closing ---

void MessageDialog::cmdOK_Click() {
    if (ValidateMessages()) {
        DialogResult = true;
        CloseDialog();
        return;
    }
    // The edits stay; the person goes on in the grid.
    grid_.SetFocus();
}

void MessageDialog::cmdCancel_Click() { CancelDialog(); }

void MessageDialog::cmdHelp_Click() {
    if (ops_.ShowHelp) ops_.ShowHelp();
}

void MessageDialog::CancelDialog() {
    DialogResult = false;
    CloseDialog();
}

void MessageDialog::CloseDialog() { Hide(); }

void MessageDialog::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii != KeyEscape) return;
    KeyAscii = 0;
    CancelDialog();
}

void MessageDialog::Form_Activate() {
    if (!grid_.Visible() || !grid_.Enabled()) return;
    editor_.UpdateCaret();
    grid_.SetFocus();
}

}  // namespace qx
