// The one object through which the library reaches the host's services and
// its closed libraries: the operand table, the settings, the error reporter,
// the beep, messages, the modal driver. Tests and the CLI install a fresh
// context and replace its parts, so nothing leaks from one run to the next.
#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/object_count.h"
#include "platform/host/operand.h"

namespace qx {

class Form;

// One report made through clsErrorReporter.
struct ErrorReport {
    std::wstring Name;
    int64_t Number = 0;
    std::wstring Text;
    std::wstring Source;
    std::wstring Module;
    std::wstring Procedure;
    int32_t Severity = 0;
};

// One message shown through ShowMessage, with the answer it got.
// A plain message box (MsgBox) has Number 0 and carries its own title and
// style; a numbered message of the host's text table has neither.
struct ShownMessage {
    int32_t Number = 0;
    std::vector<std::wstring> Params;
    std::wstring Text;
    int32_t Answer = 0;
    std::wstring Title;
    // The MsgBox style: buttons plus icon, e.g. vbExclamation (48).
    int32_t Style = 0;
};

struct Font {
    std::wstring Name = L"Tahoma";
    double Size = 8.25;
    bool operator==(const Font&) const = default;
};

// A picture of the host: a bitmap of 24-bit pixels, blue-green-red. Counted
// as a live object: one the component made is freed by the component's code.
struct Picture : protected CountedObject {
    int32_t Width = 0;
    int32_t Height = 0;
    std::vector<uint8_t> Pixels;
};
using PicturePtr = std::shared_ptr<const Picture>;

// Shows dialogs modally and answers the host's own modal questions. The
// scripted driver plays a person in tests and the CLI; a desktop driver shows
// real widgets.
class ModalDriver {
public:
    virtual ~ModalDriver() = default;
    // Runs the dialog until it hides.
    virtual void ShowModal(Form& form) = 0;
    // The host's operand picker: true when the person chose something (the
    // choice is written into the operand), false when the picker was canceled.
    virtual bool PickOperand(clsOperand& operand) = 0;
    // A message box of the host; returns the button pressed (1 is OK / Yes).
    virtual int32_t AnswerMessage(const ShownMessage& message) = 0;
    // The system beep; a person in a script hears nothing.
    virtual void Beep() {}
};

// The person of a test or of the CLI: answers come from queues; what is not
// scripted gets a default (pickers cancel, messages answer 1, dialogs cancel
// through their Cancel button if they have one).
class ScriptedModalDriver : public ModalDriver {
public:
    using DialogScript = std::function<void(Form&)>;
    using PickScript = std::function<bool(clsOperand&)>;

    void ShowModal(Form& form) override;
    bool PickOperand(clsOperand& operand) override;
    int32_t AnswerMessage(const ShownMessage& message) override;

    void QueueDialog(DialogScript script) { dialogs_.push_back(std::move(script)); }
    void QueuePick(PickScript script) { picks_.push_back(std::move(script)); }
    // Picks the given operand identity, as a person would in the picker.
    void QueuePick(const OperandChoice& choice);
    void QueuePickCancel();
    void QueueAnswer(int32_t answer) { answers_.push_back(answer); }
    int32_t DefaultAnswer = 1;

    size_t PendingDialogs() const { return dialogs_.size(); }
    size_t PendingPicks() const { return picks_.size(); }

private:
    std::deque<DialogScript> dialogs_;
    std::deque<PickScript> picks_;
    std::deque<int32_t> answers_;
};

// The host's table of operand links and of constants.
class OperandTable {
public:
    bool IsRegistered(int32_t type, int32_t address) const;
    void Register(int32_t type, int32_t address, int32_t mode, int32_t format);
    void Release(int32_t type, int32_t address);
    int32_t AllocateConstantAddress() { return nextConstantAddress_++; }
    void RegisterConstant(int32_t address, int32_t type, int64_t value);
    std::optional<int64_t> ConstantValue(int32_t address) const;
    // Links per identity, for tests.
    int32_t LinkCount(int32_t type, int32_t address) const;
    int32_t ConstantCount() const { return static_cast<int32_t>(constants_.size()); }

    struct Entry {
        int32_t Count = 0;
        int32_t Mode = 1;
        int32_t Format = 0;
    };
    const Entry* Find(int32_t type, int32_t address) const;

    // The whole table, for a host that saves it with its project and
    // restores it on opening.
    struct Link {
        int32_t Type = 0;
        int32_t Address = 0;
        Entry Link;
    };
    // Every identity that at least one link names, by type, then address.
    std::vector<Link> Links() const;
    // Forgets every link (the constants stay): for a host that derives the
    // table anew from what its operations name.
    void ClearLinks() {
        slots_.clear();
        usedSlots_ = 0;
    }
    // Sets an identity's entry as it was saved; a count of 0 or less leaves it out.
    void RestoreLink(int32_t type, int32_t address, const Entry& entry);
    // Constant-table address to type and value.
    const std::map<int32_t, std::pair<int32_t, int64_t>>& Constants() const { return constants_; }
    int32_t NextConstantAddress() const { return nextConstantAddress_; }
    void NextConstantAddress(int32_t next) { nextConstantAddress_ = next; }

private:
    // Looked up at every operand an image load links, so kept in one flat
    // block, open addressing by type and address. A link released to a count
    // of 0 keeps its slot and is found by no one until registered again.
    struct Slot {
        int32_t Type = 0;
        int32_t Address = 0;
        bool Used = false;
        Entry Link;
    };
    Slot* slotOf(int32_t type, int32_t address);
    const Slot* slotOf(int32_t type, int32_t address) const;
    std::vector<Slot> slots_;
    size_t usedSlots_ = 0;
    std::map<int32_t, std::pair<int32_t, int64_t>> constants_;
    int32_t nextConstantAddress_ = 1;
};

// The one caret of the user interface, as the caret calls left it. Sizes
// and places are pixels of the window's client area.
struct CaretState {
    // The window that owns the caret; 0 while there is none.
    int32_t Window = 0;
    int32_t Bitmap = 0;
    int32_t Width = 0;
    int32_t Height = 0;
    int32_t X = 0;
    int32_t Y = 0;
    bool Shown = false;
    bool operator==(const CaretState&) const = default;
};

class HostContext {
public:
    HostContext();

    OperandTable Operands;

    // clsEnvironment's switch for the extended operand types 64 to 67.
    bool ExtendedOperands = false;
    // clsAppPaths: the host's application folder; the runtime folder is
    // this folder plus "/../FB_Lib/RT/".
    std::wstring AppFolder;
    // clsNameLimits, by entry number (22 is the instance-name limit).
    std::map<int32_t, int32_t> NameLimits{{22, 20}};
    Font AppFont;
    // GetDeviceCaps with index 88 (LOGPIXELSX) and 90 (LOGPIXELSY).
    int32_t DpiX = 96;
    int32_t DpiY = 96;
    // The caret that CreateCaret, SetCaretPos and ShowCaret keep.
    CaretState Caret;
    // Words of text and message numbers that replace the built-in table.
    std::map<int32_t, std::wstring> TextOverrides;
    // When set, every error report is also written to standard error.
    bool EchoReports = false;

    std::shared_ptr<ModalDriver> Driver;
    // The scripted driver, when that is the one installed (else nullptr).
    ScriptedModalDriver* Script();

    // What happened, for tests and the CLI.
    std::vector<ErrorReport> Reports;
    std::vector<ShownMessage> Messages;
    int32_t BeepCount = 0;
    // Each caret call as it was written, e.g. "CreateCaret(3, 0, 4, 20)".
    std::vector<std::string> CaretCalls;
    // The indexes GetDeviceCaps was asked for, in order.
    std::vector<int32_t> DeviceCapsAsked;
    std::vector<std::wstring> Help;  // ShowFBHelp and friends, as text

    std::wstring RuntimeFolder() const;

    // A view that paints the caret hears each change of it.
    int32_t SubscribeCaret(std::function<void()> listener);
    void UnsubscribeCaret(int32_t token);
    // Tells the listeners; the caret calls do, after they changed Caret.
    void caretChanged();

private:
    std::vector<std::pair<int32_t, std::function<void()>>> caretListeners_;
    int32_t nextCaretToken_ = 1;
};

// The context in force; there is always one.
HostContext& host();

// Installs a fresh context for its lifetime and puts the old one back after.
class ScopedHostContext {
public:
    ScopedHostContext();
    ~ScopedHostContext();
    ScopedHostContext(const ScopedHostContext&) = delete;
    ScopedHostContext& operator=(const ScopedHostContext&) = delete;
    HostContext& operator*() { return *context_; }
    HostContext* operator->() { return context_.get(); }

private:
    std::unique_ptr<HostContext> context_;
    HostContext* previous_;
};

}  // namespace qx
