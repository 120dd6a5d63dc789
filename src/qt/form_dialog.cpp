#include "qt/form_dialog.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>

#include "qt/control_binding.h"
#include "qt/model_action.h"

namespace qx {

FormDialog::FormDialog(Form& form, QWidget* parent) : QDialog(parent), form_(form) {
    setObjectName(QString::fromStdWString(form.Name()));
}

void FormDialog::keyPressEvent(QKeyEvent* event) {
    // Enter and Escape are the form's keys, not Qt's default and cancel buttons.
    if (const int32_t code = keyAsciiOf(event->key(), event->text()); code != 0) {
        runModelAction([this, code] { form_.UserKeyPress(code); });
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FormDialog::closeEvent(QCloseEvent* event) {
    // The control box: the form may refuse; when it ends, the driver closes the window.
    event->ignore();
    runModelAction([this] { form_.UserClose(); });
}

void FormDialog::reject() {
    runModelAction([this] { form_.UserClose(); });
}

}  // namespace qx
