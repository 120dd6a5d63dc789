// The common ground of the headless control models that dialogs are built
// from: the properties every control shares, the change notification a view
// layer binds to, and the path of a key stroke through the form's key preview.
// Dialog logic drives the models in code, a person (a test script or a view)
// drives them through the User* actions; both raise the same events.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host/host_context.h"

namespace qx {

// Key codes of UserKeyDown.
namespace keys {
inline constexpr int32_t PageUp = 33;
inline constexpr int32_t PageDown = 34;
inline constexpr int32_t End = 35;
inline constexpr int32_t Home = 36;
inline constexpr int32_t Left = 37;
inline constexpr int32_t Up = 38;
inline constexpr int32_t Right = 39;
inline constexpr int32_t Down = 40;
inline constexpr int32_t Delete = 46;
// Bits of Shift.
inline constexpr int32_t ShiftMask = 1;
inline constexpr int32_t CtrlMask = 2;
inline constexpr int32_t AltMask = 4;
}  // namespace keys

namespace err {
inline constexpr int32_t InvalidPropertyValue = 380;
inline constexpr int32_t InvalidPropertyArrayIndex = 381;
inline constexpr int32_t PropertyNotSupported = 438;
}  // namespace err

// OLE colours of the system palette (top bit set) that controls start with.
namespace colour {
inline constexpr uint32_t ButtonFace = 0x8000000F;
inline constexpr uint32_t ButtonText = 0x80000012;
inline constexpr uint32_t Window = 0x80000005;
inline constexpr uint32_t WindowText = 0x80000008;
}  // namespace colour

// Observers hear the name of each property that changed ("Text", "Enabled",
// "List" ...), after the change and before any event it raises, in the order
// they subscribed. An observer may unsubscribe itself, or others, while it is
// being told: one that is gone is not told again, not even the rest of a
// change in progress. One that subscribes while a change is told hears the
// next change, not this one. A change told while another is being told (an
// observer that changes the control) is told to every observer in full
// before the first one goes on.
class Observable {
public:
    using Observer = std::function<void(std::string_view property)>;

    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    int32_t Subscribe(Observer observer);
    void Unsubscribe(int32_t token);

protected:
    Observable() = default;
    ~Observable() = default;
    // Costs no allocation: a control's views hear every cell a grid paints.
    void notify(std::string_view property);

private:
    // An observer lives apart from the list, so that the list may grow while
    // the observer runs; one unsubscribed while changes are told keeps Token
    // 0 until the outermost notify is done, so that places in the list stay.
    struct Entry {
        int32_t Token;
        std::unique_ptr<Observer> Call;
    };
    std::vector<Entry> observers_;
    int32_t nextToken_ = 1;
    // How many notify calls are under way, one inside the other.
    int32_t notifying_ = 0;
    bool unsubscribedWhileTold_ = false;
};

class Form;

class Control : public Observable {
public:
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    const std::wstring& Name() const { return name_; }
    // The control's window handle: a number of its own, never 0, that the
    // caret calls name it by.
    int32_t hWnd() const { return hWnd_; }
    bool Enabled() const { return enabled_; }
    void Enabled(bool value);
    bool Visible() const { return visible_; }
    void Visible(bool value);
    const std::wstring& ToolTipText() const { return toolTipText_; }
    void ToolTipText(const std::wstring& value);
    uint32_t BackColor() const { return backColor_; }
    void BackColor(uint32_t value);
    uint32_t ForeColor() const { return foreColor_; }
    void ForeColor(uint32_t value);
    // A control that has no font raises error 438 on both, as a late-bound
    // "Font" on such a control does.
    qx::Font Font() const;
    void Font(const qx::Font& value);
    virtual bool HasFont() const { return true; }

    // The frame (or other control) the control sits in; nullptr is the form.
    // A control in a disabled or hidden container takes no user action.
    Control* Container() const { return container_; }
    void Container(Control* value) { container_ = value; }
    Form* Parent() const { return parent_; }

    // Whether a person can act on the control now.
    bool CanAct() const;
    // Makes the control the form's active one; GotFocus is raised when it was not.
    void SetFocus();
    std::function<void()> OnGotFocus;

    // A key stroke (an ANSI code: 8 backspace, 13 enter, 27 escape): the
    // form sees it first when it previews keys, then the control's KeyPress;
    // either may swallow it by setting the code to 0. What is left acts as
    // the control acts on that key.
    void UserKeyPress(int32_t KeyAscii);
    std::function<void(int32_t& KeyAscii)> OnKeyPress;

    // A key going down (a key code: 33 Page Up, 34 Page Down, 35 End, 36
    // Home, 37 to 40 the arrows left, up, right, down, 46 Delete; Shift is
    // 1 shift, 2 ctrl, 4 alt, added): the form's Form_KeyDown first when it
    // previews keys, then the control's KeyDown; either may swallow the key
    // by setting the code to 0. A key that makes a character is followed by
    // UserKeyPress, which a view calls on its own.
    void UserKeyDown(int32_t KeyCode, int32_t Shift = 0);
    std::function<void(int32_t& KeyCode, int32_t Shift)> OnKeyDown;

protected:
    Control(std::wstring name, uint32_t backColor, uint32_t foreColor);
    // What a key that nobody swallowed does to the control.
    virtual void keyAction(int32_t KeyAscii) { (void)KeyAscii; }
    // Where every User* action starts: false when the control takes no
    // action now. Otherwise the form first has its other controls end their
    // edits in progress (a grid's open cell editor, with its AfterEdit), as
    // a person who turns to this control leaves them; since their events may
    // disable this control, it is asked again afterwards.
    bool beginUserAction();
    // Ends an edit in progress as a person who turns to another control of
    // the form does; nothing for most controls.
    virtual void endEditForOtherControl() {}
    // What a key going down that nobody swallowed does to the control.
    virtual void keyDownAction(int32_t KeyCode, int32_t Shift) {
        (void)KeyCode;
        (void)Shift;
    }

private:
    friend class Form;
    std::wstring name_;
    int32_t hWnd_;
    bool enabled_ = true;
    bool visible_ = true;
    std::wstring toolTipText_;
    uint32_t backColor_;
    uint32_t foreColor_;
    qx::Font font_;
    Control* container_ = nullptr;
    Form* parent_ = nullptr;
};

}  // namespace qx
