// The Designer form of each dialog of the library, by the dialog's name.
#pragma once
#include <memory>

#include "platform/controls/form.h"
#include "qt/form_dialog.h"

namespace qx {

// The window for the form, its widgets made from the form's .ui; nullptr for
// a form that has no view yet.
std::unique_ptr<FormDialog> createFormView(Form& form, QWidget* parent = nullptr);

}  // namespace qx
