// The window of a dialog: a real modal QDialog whose keys and close button
// go to the form model, which alone decides whether the dialog ends.
#pragma once
#include <QDialog>

#include "platform/controls/form.h"

namespace qx {

class FormDialog : public QDialog {
public:
    explicit FormDialog(Form& form, QWidget* parent = nullptr);
    Form& BoundForm() const { return form_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    Form& form_;
};

}  // namespace qx
