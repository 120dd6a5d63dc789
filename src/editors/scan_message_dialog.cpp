#include "editors/scan_message_dialog.h"

#include <utility>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "sets/scan_set.h"

namespace qx {

namespace {
// A label's caption as the name of its field: no colon, no double blanks.
std::wstring fieldName(std::wstring caption) {
    for (size_t at; (at = caption.find(L"  ")) != std::wstring::npos;) caption.erase(at, 1);
    while (!caption.empty() && (caption.back() == L' ' || caption.back() == L':')) caption.pop_back();
    return caption;
}
}  // namespace

ScanMessageDialog::ScanMessageDialog(std::wstring formName, std::wstring caption)
    : MessageDialog(std::move(formName), std::move(caption), MessageGridKind::Scan, L"FlgScan", L"abScan",
                    ClearAllMessage) {
    addLink(1, Label1, lbOpFail, cmdFailLink, L"");
    addLink(2, Label3, lblOpReceived, cmdOpReceived, L"Number of Bytes received:");
    addLink(3, Label2, lbOpMessageNum, cmdOpMessageNum, L"Index of Received Message:");
}

void ScanMessageDialog::addLink(int32_t k, Label& caption, Label& display, CommandButton& button, const wchar_t* text) {
    addControls({&caption, &display, &button});
    caption.Caption(text);
    button.Caption(L"...");
    button.ToolTipText(L"Link Operand to Variable");
    button.OnClick = [this, k] { linkItem(k); };
    display.OnDblClick = [this, k] { linkItem(k); };
    if (static_cast<int32_t>(linkDisplays_.size()) < k) linkDisplays_.resize(static_cast<size_t>(k));
    linkDisplays_[static_cast<size_t>(k) - 1] = &display;
    if (static_cast<int32_t>(linkCaptions_.size()) < k) linkCaptions_.resize(static_cast<size_t>(k));
    linkCaptions_[static_cast<size_t>(k) - 1] = &caption;
}

clsProtocolScanSrv& ScanMessageDialog::scanSet() const {
    if (!set_) raiseError(err::ObjectNotSet);
    return *set_;
}

void ScanMessageDialog::editScan(clsProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                                 bool& pConfirmed) {
    pConfirmed = false;
    set_ = &pScanSrv;
    beginEdit(messageSourceOf(pScanSrv), messageSetOpsOf(pScanSrv), pFBMethod, std::move(pFBInstances));
    // ClearAll of the set rebuilds this dialog's grid while it is open.
    pScanSrv.OnMessagesCleared = [this] { Reload(); };
    // A sole Config on an operation without operands leaves nothing to edit.
    if (!loadInstancesForEdit() || (GetOperandCount() == 0 && SoleInstance())) {
        dropReferences();
        Unload();
        return;
    }
    pConfirmed = runModal();
}

void ScanMessageDialog::dropReferences() {
    if (set_) set_->OnMessagesCleared = nullptr;
    set_ = nullptr;
    MessageDialog::dropReferences();
}

int32_t ScanMessageDialog::GetOperandCount() const {
    itfFBMethod* fb = methodOrNull();
    if (!fb) return 0;
    int32_t count = 0;
    if (OperandCollectionPtr in = fb->itfFBMethod_InOperands()) count += in->Count();
    if (OperandCollectionPtr out = fb->itfFBMethod_OutOperands()) count += out->Count();
    return count;
}

clsOperand* ScanMessageDialog::outOperand(int32_t k) const {
    itfFBMethod* fb = methodOrNull();
    if (!fb) return nullptr;
    OperandCollectionPtr out = fb->itfFBMethod_OutOperands();
    if (!out || out->Count() < k) return nullptr;
    return out->Item(k).get();
}

bool ScanMessageDialog::isNewItem(int32_t k) const {
    const clsOperand* operand = outOperand(k);
    return !operand || operand->IsNew();
}

void ScanMessageDialog::loadMessagesAndLinks() {
    MessageGridEditor& editor = gridEditor();
    editor.IgnoreGridEvents = true;
    editor.PaintAllMessages();
    editor.InitCaret();
    for (int32_t k = 1; k <= static_cast<int32_t>(linkDisplays_.size()); ++k)
        if (clsOperand* operand = outOperand(k)) linkDisplays_[k - 1]->Caption(GetOperandDisplayText(*operand));
}

void ScanMessageDialog::linkItem(int32_t k) {
    clsOperand* operand = outOperand(k);
    if (!operand || k < 1 || k > static_cast<int32_t>(linkDisplays_.size())) return;
    prepareLink(k, *operand);
    linkOperand(*operand, *linkDisplays_[k - 1]);
}

void ScanMessageDialog::UpdateOKEnabled() {
    MessageDialog::UpdateOKEnabled();
    for (int32_t k = 1; k <= requiredLinks_; ++k)
        if (isNewItem(k)) cmdOK.Enabled(false);
}

std::wstring ScanMessageDialog::inputProblem() const {
    std::wstring problem = MessageDialog::inputProblem();
    for (int32_t k = 1; problem.empty() && k <= requiredLinks_; ++k)
        if (isNewItem(k)) {
            const Label* caption = static_cast<size_t>(k) <= linkCaptions_.size() ? linkCaptions_[k - 1] : nullptr;
            const std::wstring name = caption ? fieldName(caption->Caption()) : L"Link " + std::to_wstring(k);
            problem = L"\"" + name + L"\" must be linked: press ...";
        }
    return problem;
}

bool ScanMessageDialog::checkMessages() { return checkMessagesToDownload(NoMessagesMessage) && checkNoEmptyMessage(); }

void ScanMessageDialog::Form_Load() {
    MessageDialog::Form_Load();
    FirstActivation = true;
}

void ScanMessageDialog::Form_Activate() {
    if (!FirstActivation || !grid().Visible() || !grid().Enabled()) return;
    const int32_t links = static_cast<int32_t>(linkDisplays_.size());
    bool allOpen = outOperand(links) != nullptr;
    for (int32_t k = 1; k <= links; ++k) allOpen = allOpen && isNewItem(k);
    if (allOpen) {
        FirstActivation = false;
        linkItem(1);
        for (int32_t k = 2; k <= links && !isNewItem(k - 1); ++k) linkItem(k);
    }
    MessageDialog::Form_Activate();
}

}  // namespace qx
