// The shared helpers that work on dialogs and their controls.
#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/form.h"
#include "platform/host/host_services.h"

namespace qx {

int32_t FindComboIndex(const ComboBox& combo, int32_t itemData) {
    for (int32_t i = 0; i < combo.ListCount(); ++i)
        if (combo.ItemData(i) == itemData) return i;
    // Callers assign the result blindly, so an unknown number selects the first item.
    return 0;
}

void ApplyDialogFont(Form& form) {
    qx::Font font = clsAppFont().GetFont(0);
    form.Font(font);
    for (Control* control : form.Controls()) {
        // A control without a font refuses the property; that is no error here.
        try {
            control->Font(font);
        } catch (const RuntimeError&) {
        }
    }
}

}  // namespace qx
