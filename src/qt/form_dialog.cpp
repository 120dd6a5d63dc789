#include "qt/form_dialog.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>

#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "qt/control_binding.h"
#include "qt/model_action.h"
#include "qt/qt_text.h"

namespace qx {

FormDialog::FormDialog(Form& form, QWidget* parent) : QDialog(parent), form_(form) {
    setObjectName(QString::fromStdWString(form.Name()));
}

void FormDialog::WatchDialogKeys() {
    for (Control* control : form_.Controls())
        if (QWidget* widget = findChild<QWidget*>(toQString(control->Name()))) widget->installEventFilter(this);
}

Control* FormDialog::controlOf(QWidget* widget) const {
    for (; widget && widget != this; widget = widget->parentWidget()) {
        const QString name = widget->objectName();
        if (name.isEmpty()) continue;
        for (Control* control : form_.Controls())
            if (toQString(control->Name()) == name) return control;
    }
    return nullptr;
}

CommandButton* FormDialog::buttonNamed(std::initializer_list<const wchar_t*> names) const {
    for (Control* control : form_.Controls())
        for (const wchar_t* name : names)
            if (control->Name() == name)
                if (auto* button = dynamic_cast<CommandButton*>(control)) return button;
    return nullptr;
}

FormDialog::DialogKey FormDialog::dialogKeyOf(const QKeyEvent& event, QWidget* focus) const {
    const bool escape = event.key() == Qt::Key_Escape;
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if ((!escape && !enter) || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return DialogKey::Widget;
    // An open cell editor ends or drops its edit on these keys; a text of
    // several lines takes Enter as a new line.
    for (QWidget* parent = focus; parent && parent != this; parent = parent->parentWidget())
        if (auto* view = qobject_cast<QAbstractItemView*>(parent->parentWidget()); view && parent == view->viewport())
            return DialogKey::Widget;
    if (enter && (qobject_cast<QPlainTextEdit*>(focus) || qobject_cast<QTextEdit*>(focus)))
        if (!focus->property("readOnly").toBool()) return DialogKey::Widget;
    // Widgets of the view's own (the capture test, say) keep their keys;
    // with the focus on no widget the keys are the dialog's.
    Control* control = controlOf(focus);
    if (!control && focus && focus != this) return DialogKey::Widget;
    // A grid whose dialog reads its keys (the message grid, the frame
    // grids) or that has an edit open keeps them.
    if (auto* grid = dynamic_cast<Grid*>(control); grid && (grid->OnKeyPress || grid->IsEditing()))
        return DialogKey::Widget;
    if (escape) {
        // A form that previews keys hears Escape first, as it was made to;
        // for the others Escape is the Cancel button.
        if (form_.KeyPreview()) return DialogKey::Widget;
        return DialogKey::Cancel;
    }
    // A focused button presses itself on Enter.
    if (control && dynamic_cast<CommandButton*>(control)) return DialogKey::Widget;
    return buttonNamed({L"cmdOk", L"cmdOK"}) ? DialogKey::Accept : DialogKey::Widget;
}

bool FormDialog::actOnDialogKey(const QKeyEvent& event, QWidget* focus) {
    switch (dialogKeyOf(event, focus)) {
        case DialogKey::Widget:
            return false;
        case DialogKey::Cancel:
            // The Cancel button's own click: a disabled one refuses, as under the mouse.
            if (CommandButton* cancel = buttonNamed({L"cmdCancel"}))
                runModelAction([cancel] { cancel->UserClick(); });
            else
                runModelAction([this] { form_.UserClose(); });
            return true;
        case DialogKey::Accept:
            // Through the OK button's click, so that its checks and messages run.
            if (CommandButton* ok = buttonNamed({L"cmdOk", L"cmdOK"})) runModelAction([ok] { ok->UserClick(); });
            return true;
    }
    return false;
}

bool FormDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() &&
        actOnDialogKey(*static_cast<QKeyEvent*>(event), static_cast<QWidget*>(watched)))
        return true;
    return QDialog::eventFilter(watched, event);
}

void FormDialog::keyPressEvent(QKeyEvent* event) {
    if (actOnDialogKey(*event, focusWidget())) {
        event->accept();
        return;
    }
    // Other keys, and these on a focused button, are the form's: its key preview hears them.
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
