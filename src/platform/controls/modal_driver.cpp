// The scripted person's side of a modal dialog.
#include <vector>

#include "platform/controls/form.h"
#include "platform/host/host_context.h"

namespace qx {

namespace {
// The dialogs shown modally right now, innermost last: when one ends, the one
// below becomes the active dialog again and hears Form_Activate.
std::vector<Form*>& modalStack() {
    static std::vector<Form*> stack;
    return stack;
}

class ModalScope {
public:
    explicit ModalScope(Form& form) { modalStack().push_back(&form); }
    ~ModalScope() { modalStack().pop_back(); }
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
};
}  // namespace

void ScriptedModalDriver::ShowModal(Form& form) {
    {
        ModalScope scope(form);
        form.Load();
        form.Show();
        form.Activate();
        // The script belongs to this dialog even when the dialog ended on its
        // own while activating: take it, so the next dialog gets the next one.
        DialogScript script;
        if (!dialogs_.empty()) {
            script = std::move(dialogs_.front());
            dialogs_.pop_front();
        }
        if (script && form.Visible()) script(form);
        // A person who walks away closes the window: the dialog ends as canceled.
        if (form.Visible()) form.UserClose();
        // A dialog that refuses even that still ends here; a test must never hang.
        if (form.Visible()) form.Hide();
    }
    if (!modalStack().empty()) {
        Form* below = modalStack().back();
        if (below->Visible()) below->Activate();
    }
}

}  // namespace qx
