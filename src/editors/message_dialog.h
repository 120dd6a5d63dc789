// The frame shared by the four message dialogs (the serial Send and Scan
// dialogs and their TCP/IP twins): the message grid with its editor, the
// toolbar with its popups, the list of Config instances on the toolbar, OK,
// Cancel and Help, and what they do alike: loading the instance list, the
// message commands of the toolbar with their grades of refresh, the message
// checks that every dialog's validation starts or ends with, the link of one
// operand to its label, activation, Escape and closing.
//
// A dialog derives from MessageDialog, names its grid and toolbar (FlgSend
// and abSend, or FlgScan and abScan) and binds them as members of those
// names to grid() and toolBar(). It gives its set's operations as
// MessageSetOps (messageSetOpsOf any set that has them), and adds its own
// controls, LoadDialog, UpdateOKEnabled and ValidateMessages.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "editors/message_grid.h"
#include "editors/message_toolbar.h"
#include "platform/basics/variant.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"
#include "platform/host/host_contract.h"
#include "platform/host/operand.h"

namespace qx {

// What the message dialogs call on their set, besides the messages
// themselves (MessageSource). Numbers are 1-based.
struct MessageSetOps {
    std::function<void(int32_t pMessageNumber)> CutMessage;
    std::function<void(int32_t pMessageNumber)> CopyMessage;
    std::function<void(int32_t pMessageNumber)> PasteMessage;
    std::function<bool(int32_t pMessageNumber)> InsertMessageBefore;
    std::function<bool(int32_t pMessageNumber)> InsertMessage;
    std::function<bool()> AppendMessage;
    std::function<bool(int32_t pMessageNumber)> DeleteMessage;
    std::function<void()> ClearAll;
    std::function<int32_t()> GetNumberOfMessagesToDownload;
    std::function<int32_t()> GetEmptyMessageNumber;
    std::function<int32_t()> GetMessageNumberWithLongSegment;
    std::function<void()> ShowHelp;
};

// The operations of any set that has them under their usual names (the
// Send and Scan sets and their TCP/IP twins); the set must outlive the use.
template <class Set>
MessageSetOps messageSetOpsOf(Set& set) {
    MessageSetOps ops;
    ops.CutMessage = [&set](int32_t n) { set.CutMessage(n); };
    ops.CopyMessage = [&set](int32_t n) { set.CopyMessage(n); };
    ops.PasteMessage = [&set](int32_t n) { set.PasteMessage(n); };
    // One set answers a Boolean in a variant here.
    ops.InsertMessageBefore = [&set](int32_t n) { return Variant(set.InsertMessageBefore(n)).ToBool(); };
    ops.InsertMessage = [&set](int32_t n) { return static_cast<bool>(set.InsertMessage(n)); };
    ops.AppendMessage = [&set] { return static_cast<bool>(set.AppendMessage()); };
    ops.DeleteMessage = [&set](int32_t n) { return static_cast<bool>(set.DeleteMessage(n)); };
    ops.ClearAll = [&set] { set.ClearAll(); };
    // An empty variant counts as 0.
    ops.GetNumberOfMessagesToDownload = [&set] { return Variant(set.GetNumberOfMessagesToDownload()).ToI4(); };
    ops.GetEmptyMessageNumber = [&set] { return static_cast<int32_t>(set.GetEmptyMessageNumber()); };
    ops.GetMessageNumberWithLongSegment = [&set] {
        return static_cast<int32_t>(set.GetMessageNumberWithLongSegment());
    };
    ops.ShowHelp = [&set] { set.ShowHelp(); };
    return ops;
}

class MessageDialog : public Form {
public:
    // Back colours of the framing lists, grids and labels.
    static constexpr uint32_t EnabledBackColor = 0xFFFFFF;
    static constexpr uint32_t DisabledBackColor = 0x8000000B;
    static constexpr int32_t KeyEscape = 27;

    // The list of Config instances, carried on the toolbar's MainToolBar.
    ComboBox cbInstanceName{L"cbInstanceName"};
    CommandButton cmdOK{L"cmdOK"};
    CommandButton cmdCancel{L"cmdCancel"};
    CommandButton cmdHelp{L"cmdHelp"};

    // True only when OK passed validation.
    bool DialogResult = false;

    MessageGridEditor& gridEditor() { return editor_; }
    Grid& grid() { return grid_; }
    const Grid& grid() const { return grid_; }
    ToolBar& toolBar() { return bar_; }

    // The reset of the grid that the set's ClearAll asks for.
    void Reload();

    // Fills cbInstanceName from the host's instances. None: host message
    // 140 and NoInstances. A sole instance becomes the operation's Config
    // when the operation is new. An operation that is not new and whose
    // Config is not in the list: host message 141, and nothing is current.
    void LoadInstanceList(bool& NoInstances);
    // After LoadInstanceList: there is exactly one instance and it is the
    // operation's Config (taken by a new operation, or already linked). The
    // Scan dialogs ask it; the Send dialogs do not.
    bool SoleInstance() const { return soleInstance_; }
    // Runs the toolbar command of a tool id: the caret commands through the
    // grid editor, the message commands on the set.
    void abTool_Click(const std::wstring& ToolId);
    void cbInstanceName_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();

    // OK needs a Config instance chosen; a dialog adds its own conditions.
    virtual void UpdateOKEnabled();
    // What keeps OK disabled, as the field and its rule, in the order of
    // UpdateOKEnabled; empty when OK is enabled. For the person, beside the
    // button. The checks of OK itself still speak through their messages.
    virtual std::wstring inputProblem() const;
    // The checks of OK, in the dialog's order; false at the first fault.
    virtual bool ValidateMessages() = 0;

    // DialogResult := False, then CloseDialog.
    void CancelDialog();
    // Ends the modal run; the dialog's Edit then unloads it and drops its
    // references (dropReferences).
    void CloseDialog();

    void Form_Load() override;
    void Form_Activate() override;
    void Form_KeyPress(int32_t& KeyAscii) override;

protected:
    // clearAllMessage: the host message that ID_ClearAll asks.
    MessageDialog(std::wstring formName, std::wstring caption, MessageGridKind kind, std::wstring gridName,
                  std::wstring toolBarName, int32_t clearAllMessage);

    // Step 1 of Edit: keeps the set and the host objects, CurrentMessage :=
    // the first message. The dialog loads here, as at the first touch of a
    // control.
    void beginEdit(MessageSource source, MessageSetOps ops, itfFBMethod& method, InstancesPtr instances);
    // Steps 2 and 3: with IgnoreGridEvents set, LoadInstanceList; true when
    // there are instances to offer.
    bool loadInstancesForEdit();
    // Step 4: LoadDialog, the modal run, then unload and drop everything;
    // answers DialogResult.
    bool runModal();
    // Drops the set, the host objects and CurrentMessage.
    virtual void dropReferences();

    // Loads the message grid and what the dialog shows of the set.
    virtual void LoadDialog() = 0;
    // What a dialog fills at its load besides the grid (its lists), run with
    // IgnoreGridEvents set before BuildMessageGrid.
    virtual void loadOwnControls() {}
    // Whether LoadInstanceList goes on to fill the list after a sole
    // instance; the Scan dialogs stop when there are no operands.
    virtual bool fillsListAfterSoleInstance() { return true; }
    // Run after ID_InsertBefore, ID_InsertMsg, ID_AppendMsg and ID_DeleteMsg.
    virtual void AfterMessageCountChanged() {}

    // The common checks of ValidateMessages. Each shows its message and
    // answers false on a fault.
    // Nothing to download: host message noMessages (143 Send, 148 Scan).
    bool checkMessagesToDownload(int32_t noMessages);
    // An empty message before a used one: host message 144 with its grid number.
    bool checkNoEmptyMessage();
    // A fixed-text run above 255 characters: the message box "PROTOCOL".
    bool checkLongSegments();

    // The link of one operand, shown in its label: the host's picker, the
    // label's text when the operand is linked, then UpdateOKEnabled.
    void linkOperand(clsOperand& operand, Label& display);

    itfFBMethod& method() const;
    itfFBMethod* methodOrNull() const { return method_; }
    const MessageSetOps& setOps() const { return ops_; }
    // Sets IgnoreGridEvents for a scope and puts back what it was.
    class IgnoreEvents {
    public:
        explicit IgnoreEvents(MessageGridEditor& editor)
            : flag_(editor.IgnoreGridEvents), saved_(editor.IgnoreGridEvents) {
            flag_ = true;
        }
        ~IgnoreEvents() { flag_ = saved_; }
        IgnoreEvents(const IgnoreEvents&) = delete;
        IgnoreEvents& operator=(const IgnoreEvents&) = delete;

    private:
        bool& flag_;
        bool saved_;
    };

private:
    void runMessageCommand(const std::wstring& ToolId);
    void rebuild(const std::function<bool(int32_t)>& operation, MessageGridEditor::LandingRow landing);

    Grid grid_;
    ToolBar bar_;
    MessageGridEditor editor_;
    int32_t clearAllMessage_;
    MessageSetOps ops_;
    itfFBMethod* method_ = nullptr;
    InstancesPtr instances_;
    bool soleInstance_ = false;
};

}  // namespace qx
