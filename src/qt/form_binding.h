// A dialog's form bound to its view: each control model to the widget of the
// same name under the view's root, and the form's caption, icon and font to
// the window. What has no partner on the other side is listed, so that a
// test can hold every form to its dialog.
#pragma once
#include <QString>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/form.h"
#include "qt/control_binding.h"

namespace qx {

class FormBinding {
public:
    FormBinding(Form& form, QWidget& window);
    ~FormBinding();
    FormBinding(const FormBinding&) = delete;
    FormBinding& operator=(const FormBinding&) = delete;

    // Controls of the form with no widget of their name, or with a widget of
    // a kind they cannot be shown as.
    const std::vector<std::wstring>& ControlsWithoutWidget() const { return controlsWithoutWidget_; }
    // Named widgets of the view that stand for no control. Qt's own inner
    // widgets (unnamed, named "qt_...", or the buttons inside a tab bar) are not counted.
    const std::vector<QString>& WidgetsWithoutControl() const { return widgetsWithoutControl_; }
    QWidget* WidgetOf(const Control& control) const;

private:
    void showForm(std::string_view property);

    Form& form_;
    QWidget& window_;
    int32_t token_ = 0;
    // The form's height in pixels; shared with a deferred resize that may outlive the binding.
    std::shared_ptr<int> wantedHeight_ = std::make_shared<int>(0);
    std::vector<std::unique_ptr<ControlBinding>> bindings_;
    std::vector<std::wstring> controlsWithoutWidget_;
    std::vector<QString> widgetsWithoutControl_;
};

}  // namespace qx
