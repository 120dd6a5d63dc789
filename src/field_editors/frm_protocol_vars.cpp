#include "field_editors/frm_protocol_vars.h"

#include <algorithm>
#include <typeinfo>

#include "field_editors/number_lists.h"
#include "framework/shared_helpers.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"

namespace qx {

namespace {
constexpr int32_t keyEscape = 27;
constexpr int32_t iconPicture = 401;
constexpr int32_t textLimit = 500;
constexpr int32_t listAlignmentItems = 100;
constexpr int32_t floatType = 7;
constexpr int32_t memoryInteger = 3;

// Tabs by their order on the strip.
enum Tab : int32_t {
    TabBinary = 1,
    TabNumeric = 2,
    TabStream = 3,
    TabList = 4,
    TabScanNumeric = 5,
    TabScanStream = 6,
    TabChecksum = 7,
    TabDate = 8,
    TabTime = 9,
};

int32_t kindOfTab(int32_t tab) {
    switch (tab) {
        case TabBinary:
            return field_kind::Binary;
        case TabNumeric:
        case TabStream:
            return field_kind::SendNumeric;
        case TabList:
            return field_kind::List;
        case TabScanNumeric:
        case TabScanStream:
            return field_kind::ScanNumeric;
        case TabChecksum:
            return field_kind::Checksum;
        case TabDate:
            return field_kind::Date;
        default:
            return field_kind::Time;
    }
}

bool isLinked(const OperandPtr& operand) { return operand && !operand->IsNew(); }

std::wstring withoutTrailingBlanks(const std::wstring& text) {
    size_t end = text.find_last_not_of(L' ');
    return end == std::wstring::npos ? std::wstring() : text.substr(0, end + 1);
}

template <class Field>
std::shared_ptr<Field> candidateAt(int32_t startPosition) {
    auto field = std::make_shared<Field>();
    field->StartPosition(startPosition);
    return field;
}

// The heights the open panel needs: dialog, strip, top of the button row.
struct DialogSize {
    int32_t Dialog, Strip, ButtonTop;
};

DialogSize sizeFor(int32_t kind, int32_t streamForm, int32_t varFormat) {
    switch (kind) {
        case field_kind::Binary:
        case field_kind::Date:
        case field_kind::Time:
            return {2940, 1815, 1830};
        case field_kind::Checksum:
            return {6460, 5335, 5350};
        case field_kind::SendNumeric:
            if (streamForm == 1) return {4050, 2875, 2890};
            if (varFormat == 0) return {4650, 3525, 3540};
            return {3300, 2125, 2140};
        case field_kind::ScanNumeric:
            if (streamForm == 1) return {3550, 2375, 2390};
            if (varFormat == 2) return {4300, 3125, 3140};
            return {4950, 3825, 3840};
        default:
            return {4125, 2985, 3000};
    }
}
}  // namespace

frmProtocolVars::frmProtocolVars() : Form(L"frmProtocolVars") {
    addControls({&tbSMSVars, &SSActiveTabPanel1, &fText0, &txtText0, &fText1, &txtText1, &SSActiveTabPanel2,
                 &SSActiveTabPanel4});
    addControls(SendNumeric.Controls());
    addControls({&SSActiveTabPanel3, &flgListTexts, &cmndNewVLT, &cmdDeleteVLT, &ckListTextAlign, &cbListTextAlign,
                 &SSActiveTabPanel5, &SSActiveTabPanel6});
    addControls(ScanNumeric.Controls());
    addControls({&SSActiveTabPanel9});
    addControls(Checksum.Controls());
    addControls({&SSActiveTabPanel7, &lbDateFormatType, &cbDateFormatType, &SSActiveTabPanel8, &lbTimeFormatType,
                 &cbTimeFormatType, &lblLink, &lblOpData, &cmdLink, &cmdOk, &cmdCancel});
    Caption(L"Protocol Variables");
    KeyPreview(true);

    const std::pair<const wchar_t*, Frame*> tabs[] = {
        {L"Binary Text", &SSActiveTabPanel1},   {L"Numeric", &SSActiveTabPanel2}, {L"Stream", &SSActiveTabPanel4},
        {L"List of Texts", &SSActiveTabPanel3}, {L"Numeric", &SSActiveTabPanel5}, {L"Stream", &SSActiveTabPanel6},
        {L"Checksum", &SSActiveTabPanel9},      {L"Date", &SSActiveTabPanel7},    {L"Time", &SSActiveTabPanel8},
    };
    for (const auto& [caption, panel] : tabs) {
        tbSMSVars.AddTab(caption, panel);
        panel->Container(&tbSMSVars);
    }
    Checksum.Container(&SSActiveTabPanel9);

    fText0.Caption(L"Text For 0");
    fText1.Caption(L"Text For 1");
    fText0.Container(&SSActiveTabPanel1);
    fText1.Container(&SSActiveTabPanel1);
    txtText0.Container(&fText0);
    txtText1.Container(&fText1);

    flgListTexts.Cols(2);
    flgListTexts.Rows(2);
    flgListTexts.TextMatrix(0, 1, L"Text");
    flgListTexts.ColWidth(0, 360);
    flgListTexts.ColWidth(1, 5895);
    flgListTexts.Editable(true);
    flgListTexts.EditMaxLength(textLimit);
    cmndNewVLT.Caption(L"Add New Line");
    cmdDeleteVLT.Caption(L"Delete Line");
    ckListTextAlign.Caption(L"Define length");
    for (Control* control :
         std::initializer_list<Control*>{&flgListTexts, &cmndNewVLT, &cmdDeleteVLT, &ckListTextAlign, &cbListTextAlign})
        control->Container(&SSActiveTabPanel3);

    lbDateFormatType.Caption(L"Format :");
    lbTimeFormatType.Caption(L"Format :");
    lbDateFormatType.Container(&SSActiveTabPanel7);
    cbDateFormatType.Container(&SSActiveTabPanel7);
    lbTimeFormatType.Container(&SSActiveTabPanel8);
    cbTimeFormatType.Container(&SSActiveTabPanel8);

    SendNumeric.Container(&SSActiveTabPanel2, &SSActiveTabPanel4);
    ScanNumeric.Container(&SSActiveTabPanel5, &SSActiveTabPanel6);
    SendNumeric.OnResize = [this] { resizeForKind(); };
    ScanNumeric.OnResize = [this] { resizeForKind(); };
    ScanNumeric.OnOkRule = [this] { applyOkRule(); };

    lblLink.Caption(L"Link  : ");
    cmdLink.Caption(L"...");
    cmdLink.ToolTipText(L"Link Operand to Variable");
    cmdOk.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    tbSMSVars.OnClick = [this](int32_t tab) { tbSMSVars_Click(tab); };
    cmdLink.OnClick = [this] { cmdLink_Click(); };
    lblOpData.OnClick = [this] { lblOpData_Click(); };
    cmdOk.OnClick = [this] { cmdOk_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
    txtText0.OnChange = [this] { txtText0_Change(); };
    txtText1.OnChange = [this] { txtText1_Change(); };
    txtText0.OnGotFocus = [this] {
        if (BinaryCandidate) BinaryCandidate->DefaultDisplay(0);
    };
    txtText1.OnGotFocus = [this] {
        if (BinaryCandidate) BinaryCandidate->DefaultDisplay(1);
    };
    flgListTexts.OnStartEdit = [this](int32_t r, int32_t c, bool& cancel) { flgListTexts_StartEdit(r, c, cancel); };
    flgListTexts.OnRowColChange = [this] { flgListTexts_RowColChange(); };
    flgListTexts.OnSelChange = [this] { flgListTexts_SelChange(); };
    cmndNewVLT.OnClick = [this] { cmndNewVLT_Click(); };
    cmdDeleteVLT.OnClick = [this] { cmdDeleteVLT_Click(); };
    ckListTextAlign.OnClick = [this] { ckListTextAlign_Click(); };
    cbListTextAlign.OnClick = [this] { cbListTextAlign_Click(); };
    cbDateFormatType.OnClick = [this] { cbDateFormatType_Click(); };
    cbTimeFormatType.OnClick = [this] { cbTimeFormatType_Click(); };
}

VarPtr frmProtocolVars::Edit(VarPtr pVar, int32_t& pMethodType) {
    objectOf(pVar);
    IsLoading = true;
    const bool scan = pMethodType == method_type::Scan;
    if (scan) {
        Caption(L"Protocol Scan Variables");
        // A message always makes its new field as a Send numeric one.
        const itfProtocolVar& given = *pVar;
        if (typeid(given) == typeid(clsProtocolNumericVar))
            pVar = candidateAt<clsProtocolScanNumericVar>(pVar->StartPosition());
        tbSMSVars.SelectedTab(TabScanNumeric);
        for (int32_t tab : {TabBinary, TabNumeric, TabStream, TabList, TabDate, TabTime})
            tbSMSVars.TabVisible(tab, false);
    } else {
        Caption(L"Protocol Send Variables");
        for (int32_t tab : {TabScanNumeric, TabScanStream}) tbSMSVars.TabVisible(tab, false);
    }
    IsLoading = false;
    Checksum.chkSTXInCS.Enabled(IsExtendedOperandsEnabled());

    makeCandidates(pVar);
    Checksum.Candidate(ChecksumCandidate);
    if (CurrentKind == field_kind::Date || CurrentKind == field_kind::Time || CurrentKind == field_kind::Checksum) {
        hideLinkRow();
        cmdOk.Enabled(true);
    }
    if (CurrentKind == field_kind::Checksum)
        Checksum.LoadSTXInCS(ChecksumPanelHost::FieldDialog, IsExtendedOperandsEnabled(), 0);
    resizeForKind();
    if (scan) {
        if (ScanNumericCandidate) ScanNumeric.Load(ScanNumericCandidate);
    } else {
        loadBinaryTab();
        if (NumericCandidate) SendNumeric.Load(NumericCandidate);
        loadListTab();
        loadDateAndTimeTabs();
    }
    loadChecksumTab();
    refreshLinkRow();

    host().Driver->ShowModal(*this);
    if (CurrentKind == field_kind::List && IsAccepted) storeListTab();
    VarPtr result = CurrentVar;
    result->IsCanceled(!IsAccepted);
    BinaryCandidate.reset();
    NumericCandidate.reset();
    ListCandidate.reset();
    ScanNumericCandidate.reset();
    DateCandidate.reset();
    TimeCandidate.reset();
    ChecksumCandidate.reset();
    Checksum.Candidate(nullptr);
    CurrentVar.reset();
    Unload();
    return result;
}

void frmProtocolVars::makeCandidates(const VarPtr& pVar) {
    const int32_t at = pVar->StartPosition();
    const itfProtocolVar& given = *pVar;
    const std::type_info& type = typeid(given);
    int32_t tab = 0;
    // Each class brings the candidates its tabs lead to; the others stay empty.
    if (type == typeid(clsProtocolScanNumericVar)) {
        ScanNumericCandidate = std::static_pointer_cast<clsProtocolScanNumericVar>(pVar);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = ScanNumericCandidate->StreamForm() != 0 ? TabScanStream : TabScanNumeric;
    } else if (type == typeid(clsProtocolBinaryVar)) {
        BinaryCandidate = std::static_pointer_cast<clsProtocolBinaryVar>(pVar);
        NumericCandidate = candidateAt<clsProtocolNumericVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        DateCandidate = candidateAt<clsProtocolDateVar>(at);
        TimeCandidate = candidateAt<clsProtocolTimeVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = TabBinary;
    } else if (type == typeid(clsProtocolCSVar)) {
        ChecksumCandidate = std::static_pointer_cast<clsProtocolCSVar>(pVar);
        NumericCandidate = candidateAt<clsProtocolNumericVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        TimeCandidate = candidateAt<clsProtocolTimeVar>(at);
        DateCandidate = candidateAt<clsProtocolDateVar>(at);
        ScanNumericCandidate = candidateAt<clsProtocolScanNumericVar>(at);
        tab = TabChecksum;
    } else if (type == typeid(clsProtocolDateVar)) {
        DateCandidate = std::static_pointer_cast<clsProtocolDateVar>(pVar);
        NumericCandidate = candidateAt<clsProtocolNumericVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        TimeCandidate = candidateAt<clsProtocolTimeVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = TabDate;
    } else if (type == typeid(clsProtocolTimeVar)) {
        TimeCandidate = std::static_pointer_cast<clsProtocolTimeVar>(pVar);
        NumericCandidate = candidateAt<clsProtocolNumericVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        DateCandidate = candidateAt<clsProtocolDateVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = TabTime;
    } else if (type == typeid(clsProtocolNumericVar)) {
        NumericCandidate = std::static_pointer_cast<clsProtocolNumericVar>(pVar);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        ListCandidate = candidateAt<clsProtocolistTextVar>(at);
        DateCandidate = candidateAt<clsProtocolDateVar>(at);
        TimeCandidate = candidateAt<clsProtocolTimeVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = NumericCandidate->StreamForm() != 0 ? TabStream : TabNumeric;
    } else if (type == typeid(clsProtocolistTextVar)) {
        ListCandidate = std::static_pointer_cast<clsProtocolistTextVar>(pVar);
        BinaryCandidate = candidateAt<clsProtocolBinaryVar>(at);
        NumericCandidate = candidateAt<clsProtocolNumericVar>(at);
        DateCandidate = candidateAt<clsProtocolDateVar>(at);
        TimeCandidate = candidateAt<clsProtocolTimeVar>(at);
        ChecksumCandidate = candidateAt<clsProtocolCSVar>(at);
        tab = TabList;
    } else {
        raiseError(err::TypeMismatch);
    }
    CurrentVar = pVar;
    IsLoading = true;
    tbSMSVars.SelectedTab(tab);
    CurrentKind = kindOfTab(tab);
    IsLoading = false;
}

OperandPtr frmProtocolVars::linkedOperand() const {
    switch (CurrentKind) {
        case field_kind::Binary:
            return BinaryCandidate->LikedOperand();
        case field_kind::SendNumeric:
            return NumericCandidate->LikedOperand();
        case field_kind::List:
            return ListCandidate->LikedOperand();
        case field_kind::ScanNumeric:
            return ScanNumericCandidate->LikedOperand();
        default:
            return nullptr;
    }
}

void frmProtocolVars::hideLinkRow() {
    for (Control* control :
         {static_cast<Control*>(&lblOpData), static_cast<Control*>(&cmdLink), static_cast<Control*>(&lblLink)})
        control->Visible(false);
}

void frmProtocolVars::refreshLinkRow() {
    OperandPtr link = linkedOperand();
    if (!link) return;
    if (link->IsNew()) {
        cmdOk.Enabled(false);
    } else {
        cmdOk.Enabled(true);
        lblOpData.Caption(GetOperandDisplayText(*link));
    }
}

void frmProtocolVars::applyOkRule() {
    const OperandPtr link = linkedOperand();
    switch (tbSMSVars.SelectedTab()) {
        case TabBinary:
            cmdOk.Enabled(isLinked(link) && (!txtText0.Text().empty() || !txtText1.Text().empty()));
            break;
        case TabScanNumeric:
            cmdOk.Enabled(isLinked(link) && (ScanNumericCandidate->VarFormat() == 2 ||
                                             isLinked(ScanNumericCandidate->DecimalPointOperand())));
            break;
        case TabNumeric:
        case TabStream:
        case TabList:
        case TabScanStream:
            cmdOk.Enabled(isLinked(link));
            break;
        default:
            cmdOk.Enabled(true);
            break;
    }
}

void frmProtocolVars::resizeForKind() {
    int32_t streamForm = 0, varFormat = 0;
    if (CurrentKind == field_kind::SendNumeric) {
        streamForm = NumericCandidate->StreamForm();
        varFormat = NumericCandidate->VarFormat();
    } else if (CurrentKind == field_kind::ScanNumeric) {
        streamForm = ScanNumericCandidate->StreamForm();
        varFormat = ScanNumericCandidate->VarFormat();
    }
    const DialogSize size = sizeFor(CurrentKind, streamForm, varFormat);
    Height(size.Dialog);
    stripHeight_ = size.Strip;
    buttonRowTop_ = size.ButtonTop;
}

void frmProtocolVars::tbSMSVars_Click(int32_t NewTab) {
    if (IsLoading) return;
    for (Control* control :
         {static_cast<Control*>(&lblOpData), static_cast<Control*>(&cmdLink), static_cast<Control*>(&lblLink)})
        control->Visible(true);
    lblOpData.Caption(L"");
    CurrentKind = kindOfTab(NewTab);
    auto showLink = [this] {
        if (OperandPtr link = linkedOperand()) lblOpData.Caption(GetOperandDisplayText(*link));
    };
    switch (NewTab) {
        case TabChecksum:
        case TabDate:
        case TabTime:
            CurrentVar = NewTab == TabChecksum ? VarPtr(ChecksumCandidate)
                         : NewTab == TabDate   ? VarPtr(DateCandidate)
                                               : VarPtr(TimeCandidate);
            hideLinkRow();
            cmdOk.Enabled(true);
            break;
        case TabBinary:
            CurrentVar = BinaryCandidate;
            showLink();
            applyOkRule();
            break;
        case TabNumeric:
        case TabStream:
            CurrentVar = NumericCandidate;
            NumericCandidate->StreamForm(NewTab == TabStream ? 1 : 0);
            showLink();
            applyOkRule();
            break;
        case TabScanNumeric: {
            CurrentVar = ScanNumericCandidate;
            ScanNumericCandidate->StreamForm(0);
            ScanNumericCandidate->VarFormat(ScanNumeric.ChosenVarFormat());
            // A float is linked on the Stream tab only: the person links again here.
            const OperandPtr link = ScanNumericCandidate->LikedOperand();
            if (link && link->OperandType() == floatType) {
                link->OperandType(memoryInteger);
                link->IsNew(true);
            }
            showLink();
            applyOkRule();
            break;
        }
        case TabScanStream:
            CurrentVar = ScanNumericCandidate;
            ScanNumericCandidate->StreamForm(1);
            ScanNumericCandidate->VarFormat(4);
            showLink();
            applyOkRule();
            break;
        case TabList:
            CurrentVar = ListCandidate;
            showLink();
            cmdOk.Enabled(isLinked(ListCandidate->LikedOperand()));
            break;
        default:
            break;
    }
    resizeForKind();
}

void frmProtocolVars::cmdLink_Click() {
    OperandPtr link = linkedOperand();
    if (!link) return;
    const int32_t tab = tbSMSVars.SelectedTab();
    link->AddAllowedType(1, floatType, tab == TabStream || tab == TabScanStream);
    link->EditOperand();
    if (link->IsEditCanceled()) return;
    cmdOk.Enabled(true);
    lblOpData.Caption(GetOperandDisplayText(*link));
    // The lists that depend on the width of the operand follow the new link.
    if (CurrentKind == field_kind::SendNumeric)
        SendNumeric.ApplyTypeRules(link->OperandType());
    else if (CurrentKind == field_kind::ScanNumeric)
        ScanNumeric.ApplyTypeRules(link->OperandType());
    if (CurrentKind == field_kind::Binary ||
        (CurrentKind == field_kind::ScanNumeric && ScanNumericCandidate->StreamForm() == 0))
        applyOkRule();
}

void frmProtocolVars::lblOpData_Click() { cmdLink_Click(); }

void frmProtocolVars::endDialog(bool accepted) {
    IsAccepted = accepted;
    Hide();
}

void frmProtocolVars::cmdOk_Click() { endDialog(true); }

void frmProtocolVars::cmdCancel_Click() { endDialog(false); }

void frmProtocolVars::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii != keyEscape) return;
    KeyAscii = 0;
    cmdCancel_Click();
}

void frmProtocolVars::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);
    txtText0.MaxLength(textLimit);
    txtText1.MaxLength(textLimit);
}

void frmProtocolVars::Form_Activate() {
    if (CurrentKind == field_kind::Binary) {
        (BinaryCandidate->DefaultDisplay() == 0 ? txtText0 : txtText1).SetFocus();
    } else if (CurrentKind == field_kind::List) {
        IsLoading = true;
        const int32_t line = ListCandidate->DefaultDisplay() == 0 ? 1 : ListCandidate->DefaultDisplay() + 1;
        flgListTexts.Row(std::min(line, flgListTexts.Rows() - 1));
        flgListTexts.EditCell();
        IsLoading = false;
    }
}

// --- Tab 1: binary texts ---

void frmProtocolVars::loadBinaryTab() {
    IsLoading = true;
    txtText0.Text(BinaryCandidate->TextFor0());
    txtText1.Text(BinaryCandidate->TextFor1());
    IsLoading = false;
}

void frmProtocolVars::txtText0_Change() {
    if (IsLoading) return;
    BinaryCandidate->TextFor0(withoutTrailingBlanks(txtText0.Text()));
    applyOkRule();
}

void frmProtocolVars::txtText1_Change() {
    if (IsLoading) return;
    BinaryCandidate->TextFor1(withoutTrailingBlanks(txtText1.Text()));
    applyOkRule();
}

// --- Tab 4: list of texts ---

void frmProtocolVars::loadListTab() {
    IsLoading = true;
    const std::vector<std::wstring> texts = ListCandidate->Texts();
    flgListTexts.Rows(static_cast<int32_t>(texts.size()) + 1);
    for (int32_t line = 1; line < flgListTexts.Rows(); ++line) {
        flgListTexts.TextMatrix(line, 0, std::to_wstring(line - 1));
        flgListTexts.TextMatrix(line, 1, texts[static_cast<size_t>(line - 1)]);
    }
    fillNumbers(cbListTextAlign, 1, listAlignmentItems);
    if (ListCandidate->AlignmentStringSize() > 0) {
        ckListTextAlign.Value(CheckBox::Checked);
        cbListTextAlign.Visible(true);
        cbListTextAlign.ListIndex(FindComboIndex(cbListTextAlign, ListCandidate->AlignmentStringSize()));
    } else {
        cbListTextAlign.Visible(false);
    }
    IsLoading = false;
}

void frmProtocolVars::storeListTab() {
    IsLoading = true;
    flgListTexts.FinishEditing();
    std::vector<std::wstring> texts;
    for (int32_t line = 1; line < flgListTexts.Rows(); ++line) texts.push_back(flgListTexts.TextMatrix(line, 1));
    ListCandidate->Texts(texts);
    IsLoading = false;
}

void frmProtocolVars::flgListTexts_StartEdit(int32_t, int32_t, bool&) {
    if (IsLoading) return;
    flgListTexts.EditMaxLength(textLimit);
}

void frmProtocolVars::flgListTexts_RowColChange() {
    if (IsLoading) return;
    ListCandidate->DefaultDisplay(flgListTexts.Row() - 1);
    flgListTexts.EditCell();
}

void frmProtocolVars::flgListTexts_SelChange() {
    if (IsLoading) return;
    flgListTexts.EditCell();
}

void frmProtocolVars::cmndNewVLT_Click() {
    if (IsLoading) return;
    IsLoading = true;
    flgListTexts.AddItem(std::to_wstring(flgListTexts.Rows() - 1));
    const int32_t line = flgListTexts.Rows() - 1;
    flgListTexts.Row(line);
    ListCandidate->DefaultDisplay(line - 1);
    flgListTexts.EditCell();
    IsLoading = false;
}

void frmProtocolVars::cmdDeleteVLT_Click() {
    if (IsLoading) return;
    // The last line stays: a list holds at least one text.
    if (flgListTexts.Rows() == 2) return;
    flgListTexts.RemoveItem(flgListTexts.Row());
    IsLoading = true;
    for (int32_t line = 1; line < flgListTexts.Rows(); ++line)
        flgListTexts.TextMatrix(line, 0, std::to_wstring(line - 1));
    const int32_t last = flgListTexts.Rows() - 1;
    flgListTexts.Row(last);
    IsLoading = false;
    ListCandidate->DefaultDisplay(last - 1);
    flgListTexts.EditCell();
}

void frmProtocolVars::ckListTextAlign_Click() {
    if (IsLoading) return;
    if (ckListTextAlign.Value() == CheckBox::Checked) {
        cbListTextAlign.Visible(true);
        IsLoading = true;
        size_t longest = 0;
        for (int32_t line = 1; line < flgListTexts.Rows(); ++line)
            longest = std::max(longest, flgListTexts.TextMatrix(line, 1).size());
        cbListTextAlign.ListIndex(FindComboIndex(cbListTextAlign, static_cast<int32_t>(longest)));
        ListCandidate->AlignmentStringSize(static_cast<int32_t>(longest));
        IsLoading = false;
    } else {
        cbListTextAlign.Visible(false);
        ListCandidate->AlignmentStringSize(0);
    }
}

void frmProtocolVars::cbListTextAlign_Click() {
    if (IsLoading) return;
    ListCandidate->AlignmentStringSize(cbListTextAlign.ItemData(cbListTextAlign.ListIndex()));
}

// --- Tab 7: checksum ---

void frmProtocolVars::loadChecksumTab() {
    IsLoading = true;
    Checksum.FillLists();
    Checksum.ShowCandidate();
    IsLoading = false;
}

// --- Tabs 8 and 9: date and time ---

void frmProtocolVars::loadDateAndTimeTabs() {
    IsLoading = true;
    cbDateFormatType.Clear();
    for (int32_t type = 2; type <= 7; ++type) cbDateFormatType.AddItem(GetDateFormatText(type), type);
    cbDateFormatType.ListIndex(FindComboIndex(cbDateFormatType, DateCandidate->DateFormatType()));
    cbTimeFormatType.Clear();
    for (int32_t type = 0; type <= 1; ++type) cbTimeFormatType.AddItem(GetTimeFormatText(type), type);
    cbTimeFormatType.ListIndex(FindComboIndex(cbTimeFormatType, TimeCandidate->TimeFormatType()));
    IsLoading = false;
}

void frmProtocolVars::cbDateFormatType_Click() {
    if (IsLoading) return;
    DateCandidate->DateFormatType(cbDateFormatType.ItemData(cbDateFormatType.ListIndex()));
}

void frmProtocolVars::cbTimeFormatType_Click() {
    if (IsLoading) return;
    TimeCandidate->TimeFormatType(cbTimeFormatType.ItemData(cbTimeFormatType.ListIndex()));
}

}  // namespace qx
