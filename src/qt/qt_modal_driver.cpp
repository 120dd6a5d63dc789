#include "qt/qt_modal_driver.h"

#include <QApplication>
#include <QMessageBox>
#include <stdexcept>
#include <string>

#include "platform/basics/ansi.h"
#include "platform/controls/form.h"
#include "qt/capture_test.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/input_problem.h"
#include "qt/live_pane.h"
#include "qt/model_action.h"
#include "qt/operand_picker.h"
#include "qt/qt_text.h"
#include "qt/wire_preview.h"

namespace qx {

QWidget* QtModalDriver::topWindow() const { return shown_.empty() ? mainWindow_.data() : shown_.back().second; }

void QtModalDriver::ShowModal(Form& form) {
    std::unique_ptr<FormDialog> view = createFormView(form, topWindow());
    if (!view) throw std::logic_error("the dialog " + toUtf8(form.Name()) + " has no view");
    {
        FormBinding binding(form, *view);
        // Beside the bound widgets, not among them: the Send dialogs' pane of
        // wire bytes, the Scan dialogs' test against captured bytes, and the
        // live line of both.
        addWirePreview(form, *view);
        addCaptureTest(form, *view);
        addLiveLine(form, *view);
        // Under the fields: why OK is disabled or would refuse.
        addInputProblemLine(form, *view);
        view->WatchDialogKeys();
        // However the dialog ends, even by an error of its own code, it
        // leaves no trace here: no subscription, no abort hook, no window.
        struct Showing {
            QtModalDriver& driver;
            Form& form;
            std::function<void()> outerAbort;
            int32_t token = 0;
            ~Showing() {
                if (token) form.Unsubscribe(token);
                setModelActionAbort(std::move(outerAbort));
                driver.shown_.pop_back();
            }
        };
        shown_.emplace_back(&form, view.get());
        // An action that raised ends this dialog, the innermost one.
        Showing showing{*this, form, setModelActionAbort([window = view.get()] { window->done(0); })};
        form.Load();
        form.Show();
        form.Activate();
        if (form.Visible()) {
            // The dialog ends when its form hides, whoever hid it.
            showing.token = form.Subscribe([&form, window = view.get()](std::string_view property) {
                if (property == "Visible" && !form.Visible()) window->done(0);
            });
            view->exec();
        }
        if (const std::exception_ptr error = takeModelActionError()) std::rethrow_exception(error);
        if (form.Visible()) form.Hide();
    }
    // The dialog below is the active one again.
    if (!shown_.empty() && shown_.back().first->Visible()) shown_.back().first->Activate();
}

bool QtModalDriver::PickOperand(clsOperand& operand) {
    OperandPicker picker(operand, topWindow());
    return picker.exec() == QDialog::Accepted && picker.WriteChoice(operand);
}

int32_t QtModalDriver::AnswerMessage(const ShownMessage& message) {
    QMessageBox box(topWindow());
    box.setWindowTitle(message.Title.empty() ? QStringLiteral("QxFBCom2") : toQString(message.Title));
    box.setText(toQString(message.Text));
    // A message that asks is answered Yes or No; any other is acknowledged.
    const bool question = !message.Text.empty() && message.Text.back() == L'?';
    // A plain message box names its own icon; 48 is the exclamation mark.
    constexpr int32_t exclamationStyle = 48;
    if (message.Number == 0 && (message.Style & 0x70) == exclamationStyle)
        box.setIcon(QMessageBox::Warning);
    else
        box.setIcon(question ? QMessageBox::Question : QMessageBox::Information);
    box.setStandardButtons(question ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    const int pressed = box.exec();
    return pressed == QMessageBox::No ? AnswerNo : 1;
}

void QtModalDriver::Beep() { QApplication::beep(); }

}  // namespace qx
