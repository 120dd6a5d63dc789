#include "platform/controls/control.h"

#include <algorithm>
#include <atomic>

#include "platform/basics/runtime_error.h"
#include "platform/controls/form.h"

namespace qx {

int32_t Observable::Subscribe(Observer observer) {
    const int32_t token = nextToken_++;
    observers_.push_back({token, std::make_unique<Observer>(std::move(observer))});
    return token;
}

void Observable::Unsubscribe(int32_t token) {
    if (token == 0) return;
    if (notifying_ == 0) {
        std::erase_if(observers_, [token](const Entry& entry) { return entry.Token == token; });
        return;
    }
    // A notify loop is walking the list by place: the entry stays, marked,
    // and its observer lives on, since it may be the one that is running.
    for (Entry& entry : observers_)
        if (entry.Token == token) {
            entry.Token = 0;
            unsubscribedWhileTold_ = true;
        }
}

void Observable::notify(std::string_view property) {
    // Those who subscribe while told are appended after the end taken here;
    // those who unsubscribe are only marked, so every place stays where it was.
    struct Depth {
        Observable& Told;
        explicit Depth(Observable& told) : Told(told) { ++Told.notifying_; }
        ~Depth() {
            if (--Told.notifying_ > 0 || !Told.unsubscribedWhileTold_) return;
            Told.unsubscribedWhileTold_ = false;
            std::erase_if(Told.observers_, [](const Entry& entry) { return entry.Token == 0; });
        }
    } depth(*this);
    const size_t end = observers_.size();
    for (size_t i = 0; i < end; ++i) {
        // Read anew at each place: the list may have grown, and moved, meanwhile.
        const Entry& entry = observers_[i];
        if (entry.Token == 0 || !*entry.Call) continue;
        Observer& observer = *entry.Call;
        observer(property);
    }
}

namespace {
int32_t newWindowHandle() {
    // Window handles of the host are even numbers well above the small ones.
    static std::atomic<int32_t> next{0x10000};
    return next.fetch_add(2);
}
}  // namespace

Control::Control(std::wstring name, uint32_t backColor, uint32_t foreColor)
    : name_(std::move(name)), hWnd_(newWindowHandle()), backColor_(backColor), foreColor_(foreColor) {}

void Control::Enabled(bool value) {
    if (enabled_ == value) return;
    enabled_ = value;
    notify("Enabled");
}

void Control::Visible(bool value) {
    if (visible_ == value) return;
    visible_ = value;
    notify("Visible");
}

void Control::ToolTipText(const std::wstring& value) {
    if (toolTipText_ == value) return;
    toolTipText_ = value;
    notify("ToolTipText");
}

void Control::BackColor(uint32_t value) {
    if (backColor_ == value) return;
    backColor_ = value;
    notify("BackColor");
}

void Control::ForeColor(uint32_t value) {
    if (foreColor_ == value) return;
    foreColor_ = value;
    notify("ForeColor");
}

qx::Font Control::Font() const {
    if (!HasFont()) raiseError(err::PropertyNotSupported);
    return font_;
}

void Control::Font(const qx::Font& value) {
    if (!HasFont()) raiseError(err::PropertyNotSupported);
    if (font_ == value) return;
    font_ = value;
    notify("Font");
}

bool Control::CanAct() const {
    for (const Control* c = this; c; c = c->container_)
        if (!c->enabled_ || !c->visible_) return false;
    return true;
}

void Control::SetFocus() {
    if (!parent_ || parent_->activeControl_ == this) return;
    parent_->activeControl_ = this;
    if (OnGotFocus) OnGotFocus();
}

bool Control::beginUserAction() {
    if (!CanAct()) return false;
    if (parent_) parent_->endEditsBefore(*this);
    return CanAct();
}

void Control::UserKeyPress(int32_t KeyAscii) {
    if (!beginUserAction()) return;
    if (parent_ && parent_->KeyPreview()) parent_->Form_KeyPress(KeyAscii);
    if (KeyAscii == 0) return;
    if (OnKeyPress) OnKeyPress(KeyAscii);
    if (KeyAscii == 0) return;
    keyAction(KeyAscii);
}

void Control::UserKeyDown(int32_t KeyCode, int32_t Shift) {
    if (!beginUserAction()) return;
    if (parent_ && parent_->KeyPreview()) parent_->Form_KeyDown(KeyCode, Shift);
    if (KeyCode == 0) return;
    if (OnKeyDown) OnKeyDown(KeyCode, Shift);
    if (KeyCode == 0) return;
    keyDownAction(KeyCode, Shift);
}

}  // namespace qx
