// One control model bound to one widget, both ways. What the model says it
// changed ("Text", "Enabled", "List" ...) is shown on the widget; what a
// person does on the widget goes to the model's User* actions, never to the
// widget's own state, so the dialog hears exactly the events its headless
// tests drive and the model stays the only truth.
#pragma once
#include <QObject>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/controls/control.h"

namespace qx {

class ControlBinding : public QObject {
public:
    // nullptr when the widget is of no kind the control can be shown as.
    static std::unique_ptr<ControlBinding> bind(Control& control, QWidget& widget);
    ~ControlBinding() override;

    Control& BoundControl() const { return control_; }
    QWidget& Widget() const { return widget_; }

protected:
    ControlBinding(Control& control, QWidget& widget);
    // Starts listening to the model and shows all of it once.
    void start();
    // Shows one property of the model, or all of them for "".
    virtual void showProperty(std::string_view property);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Control& control_;
    QWidget& widget_;
    int32_t token_ = 0;
};

// The key code of a key stroke as the models take it: 8 backspace, 13 enter,
// 27 escape, else the character itself (as UserType passes characters), or
// 0 for a key that is no character (arrows, function keys, Ctrl+letter).
int32_t keyAsciiOf(int key, const QString& text);

}  // namespace qx
