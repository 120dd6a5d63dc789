// The window of a dialog: a real modal QDialog whose keys and close button
// go to the form model, which alone decides whether the dialog ends.
#pragma once
#include <QDialog>

#include "platform/controls/form.h"

class QKeyEvent;

namespace qx {

class CommandButton;
class Control;

class FormDialog : public QDialog {
public:
    explicit FormDialog(Form& form, QWidget* parent = nullptr);
    Form& BoundForm() const { return form_; }

    // Escape and Enter act on the dialog from whichever control has the
    // focus: the bound widgets are watched, since most of them take every
    // key for their control. Called once the view has all its widgets.
    void WatchDialogKeys();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // What Escape or Enter means with the focus on that widget.
    enum class DialogKey { Widget, Cancel, Accept };
    DialogKey dialogKeyOf(const QKeyEvent& event, QWidget* focus) const;
    // True when the key was the dialog's and has been acted on.
    bool actOnDialogKey(const QKeyEvent& event, QWidget* focus);
    Control* controlOf(QWidget* widget) const;
    CommandButton* buttonNamed(std::initializer_list<const wchar_t*> names) const;

    Form& form_;
};

}  // namespace qx
