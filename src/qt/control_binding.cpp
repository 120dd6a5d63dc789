#include "qt/control_binding.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <QTabBar>
#include <string>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/ip_address_control.h"
#include "platform/controls/tab_strip.h"
#include "platform/controls/text_box.h"
#include "qt/colours.h"
#include "qt/grid_binding.h"
#include "qt/model_action.h"
#include "qt/qt_text.h"
#include "qt/toolbar_binding.h"

namespace qx {

namespace {

bool is(std::string_view property, std::string_view name) { return property.empty() || property == name; }

// The palette roles a kind of widget paints its background and text with.
struct ColourRoles {
    QPalette::ColorRole Back;
    QPalette::ColorRole Fore;
};

void showColours(Control& control, QWidget& widget, ColourRoles roles) {
    QPalette palette = widget.palette();
    const QPalette system = QApplication::palette(&widget);
    palette.setColor(roles.Back, toQColor(control.BackColor(), system));
    palette.setColor(roles.Fore, toQColor(control.ForeColor(), system));
    widget.setPalette(palette);
}

class LabelBinding : public ControlBinding {
public:
    LabelBinding(Label& label, QLabel& widget) : ControlBinding(label, widget), label_(label), widget_(widget) {
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Caption")) widget_.setText(toQString(label_.Caption()));
        if (is(property, "BackColor") || is(property, "ForeColor")) {
            // A label with a colour of its own fills its background, as the host's does.
            widget_.setAutoFillBackground((label_.BackColor() & 0x80000000) == 0);
            showColours(label_, widget_, {QPalette::Window, QPalette::WindowText});
        }
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton &&
            widget_.rect().contains(static_cast<QMouseEvent*>(event)->position().toPoint())) {
            runModelAction([this] { label_.UserClick(); });
            return true;
        }
        if (event->type() == QEvent::MouseButtonDblClick &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            runModelAction([this] { label_.UserDoubleClick(); });
            return true;
        }
        return ControlBinding::eventFilter(watched, event);
    }

private:
    Label& label_;
    QLabel& widget_;
};

class ButtonBinding : public ControlBinding {
public:
    ButtonBinding(CommandButton& button, QAbstractButton& widget)
        : ControlBinding(button, widget), button_(button), widget_(widget) {
        QObject::connect(&widget, &QAbstractButton::clicked, this,
                         [this] { runModelAction([this] { button_.UserClick(); }); });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Caption")) widget_.setText(toQString(button_.Caption()));
    }

private:
    CommandButton& button_;
    QAbstractButton& widget_;
};

class FrameBinding : public ControlBinding {
public:
    FrameBinding(Frame& frame, QGroupBox& widget) : ControlBinding(frame, widget), frame_(frame), widget_(widget) {
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Caption")) widget_.setTitle(toQString(frame_.Caption()));
    }

private:
    Frame& frame_;
    QGroupBox& widget_;
};

class CheckBoxBinding : public ControlBinding {
public:
    CheckBoxBinding(CheckBox& box, QCheckBox& widget) : ControlBinding(box, widget), box_(box), widget_(widget) {
        widget.setTristate(true);
        // Qt has toggled its own state by now; the model decides and is shown again.
        QObject::connect(&widget, &QCheckBox::clicked, this, [this] {
            runModelAction([this] { box_.UserClick(); });
            showProperty("Value");
        });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Caption")) widget_.setText(toQString(box_.Caption()));
        if (is(property, "Value")) {
            const QSignalBlocker quiet(widget_);
            widget_.setCheckState(box_.Value() == CheckBox::Checked  ? Qt::Checked
                                  : box_.Value() == CheckBox::Grayed ? Qt::PartiallyChecked
                                                                     : Qt::Unchecked);
        }
    }

private:
    CheckBox& box_;
    QCheckBox& widget_;
};

class OptionBinding : public ControlBinding {
public:
    OptionBinding(OptionButton& option, QRadioButton& widget)
        : ControlBinding(option, widget), option_(option), widget_(widget) {
        // The model keeps the group: Qt must not switch the others itself.
        widget.setAutoExclusive(false);
        QObject::connect(&widget, &QRadioButton::clicked, this, [this] {
            runModelAction([this] { option_.UserClick(); });
            showProperty("Value");
        });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Caption")) widget_.setText(toQString(option_.Caption()));
        if (is(property, "Value")) {
            const QSignalBlocker quiet(widget_);
            widget_.setChecked(option_.Value());
        }
    }

private:
    OptionButton& option_;
    QRadioButton& widget_;
};

class ComboBinding : public ControlBinding {
public:
    ComboBinding(ComboBox& combo, QComboBox& widget) : ControlBinding(combo, widget), combo_(combo), widget_(widget) {
        widget.setEditable(false);
        QObject::connect(&widget, &QComboBox::activated, this, [this](int index) {
            runModelAction([this, index] { combo_.UserSelect(index); });
            showProperty("ListIndex");
        });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        const QSignalBlocker quiet(widget_);
        if (is(property, "List")) {
            widget_.clear();
            for (int32_t i = 0; i < combo_.ListCount(); ++i)
                widget_.addItem(toQString(combo_.List(i)), QVariant(combo_.ItemData(i)));
        }
        if (is(property, "List") || is(property, "ListIndex")) widget_.setCurrentIndex(combo_.ListIndex());
        if (is(property, "BackColor") || is(property, "ForeColor"))
            showColours(combo_, widget_, {QPalette::Base, QPalette::Text});
    }

private:
    ComboBox& combo_;
    QComboBox& widget_;
};

class TextBoxBinding : public ControlBinding {
public:
    TextBoxBinding(TextBox& box, QLineEdit& widget) : ControlBinding(box, widget), box_(box), widget_(widget) {
        // Everything that changes the text goes through the model: no menu,
        // no drag and drop, no undo of the widget's own.
        widget.setContextMenuPolicy(Qt::NoContextMenu);
        widget.setDragEnabled(false);
        widget.setAcceptDrops(false);
        QObject::connect(&widget, &QLineEdit::selectionChanged, this,
                         [this] { runModelAction([this] { takeSelection(); }); });
        QObject::connect(&widget, &QLineEdit::cursorPositionChanged, this,
                         [this] { runModelAction([this] { takeSelection(); }); });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        const QSignalBlocker quiet(widget_);
        if (is(property, "Text")) widget_.setText(toQString(box_.Text()));
        if (is(property, "Locked")) widget_.setReadOnly(box_.Locked());
        if (focusArriving_ && (property == "SelStart" || property == "SelLength")) selectionSetOnFocus_ = true;
        if (is(property, "Text") || is(property, "SelStart") || is(property, "SelLength")) {
            const int start = qtPosition(box_.Text(), box_.SelStart());
            if (box_.SelLength() > 0)
                widget_.setSelection(start, qtPosition(box_.Text(), box_.SelStart() + box_.SelLength()) - start);
            else
                widget_.setCursorPosition(start);
        }
        if (is(property, "BackColor") || is(property, "ForeColor"))
            showColours(box_, widget_, {QPalette::Base, QPalette::Text});
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
            case QEvent::FocusIn:
                return focusIn(watched, *static_cast<QFocusEvent*>(event));
            case QEvent::FocusOut:
                focusClick_ = clickHeld_ = false;
                break;
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonDblClick:
                if (!focusClick_) break;
                focusClick_ = false;
                clickHeld_ = true;
                return true;
            case QEvent::MouseMove:
                if (clickHeld_) return true;
                break;
            case QEvent::MouseButtonRelease:
                if (!clickHeld_) break;
                clickHeld_ = false;
                return true;
            default:
                break;
        }
        if (event->type() == QEvent::KeyPress) {
            bool taken = true;
            runModelAction([&] { taken = keyPressed(*static_cast<QKeyEvent*>(event)); });
            return taken;
        }
        return ControlBinding::eventFilter(watched, event);
    }

private:
    // The model hears of the focus first: its GotFocus may select. Then the
    // widget takes the focus with its signals quiet, so that no selection of
    // its own (a line edit tabbed into selects its whole text) reaches the
    // model, and shows the model's selection. When that selection is the
    // dialog's doing and a click brought the focus, the click places no caret
    // over it; a click into a box whose dialog selects nothing does.
    bool focusIn(QObject* watched, QFocusEvent& event) {
        focusArriving_ = true;
        selectionSetOnFocus_ = false;
        ControlBinding::eventFilter(watched, &event);
        focusArriving_ = false;
        {
            const QSignalBlocker quiet(widget_);
            static_cast<QObject&>(widget_).event(&event);
        }
        showProperty("SelStart");
        focusClick_ = selectionSetOnFocus_ && event.reason() == Qt::MouseFocusReason;
        clickHeld_ = false;
        return true;
    }

    // True when the key stroke was the model's; moving keys stay the widget's.
    bool keyPressed(const QKeyEvent& key) {
        switch (key.key()) {
            case Qt::Key_Tab:
            case Qt::Key_Backtab:
            case Qt::Key_Left:
            case Qt::Key_Right:
            case Qt::Key_Home:
            case Qt::Key_End:
                return false;
            case Qt::Key_Delete:
                deleteForward();
                return true;
            default:
                break;
        }
        if (key.matches(QKeySequence::Copy)) return false;
        if (key.matches(QKeySequence::Paste)) {
            box_.UserPaste(fromQString(QApplication::clipboard()->text()));
            return true;
        }
        if (key.matches(QKeySequence::SelectAll)) {
            box_.UserSelectAll();
            return true;
        }
        if (const int32_t code = keyAsciiOf(key.key(), key.text()); code != 0) box_.UserKeyPress(code);
        return true;
    }

    // The Delete key raises no key press: it removes the selection, or the
    // character after the caret, as an edit of the text.
    void deleteForward() {
        if (!box_.CanAct() || box_.Locked()) return;
        if (box_.SelLength() == 0) {
            if (box_.SelStart() >= static_cast<int32_t>(box_.Text().size())) return;
            box_.SelLength(1);
        }
        box_.SelText(L"");
    }

    // Where a person put the caret or the selection with keys or the mouse.
    void takeSelection() {
        const QString text = widget_.text();
        if (widget_.hasSelectedText()) {
            // Both ends first: setting the start shows the model's empty
            // selection on the widget before the length comes.
            const int32_t start = modelPosition(text, widget_.selectionStart());
            const int32_t end = modelPosition(text, widget_.selectionEnd());
            box_.SelStart(start);
            box_.SelLength(end - start);
        } else {
            box_.SelStart(modelPosition(text, widget_.cursorPosition()));
        }
    }

    TextBox& box_;
    QLineEdit& widget_;
    // While the model handles the focus: whether it set a selection.
    bool focusArriving_ = false;
    bool selectionSetOnFocus_ = false;
    // The click that brought the focus, from its press to its release.
    bool focusClick_ = false;
    bool clickHeld_ = false;
};

// The IP entry takes digits and dots only; the model keeps what it accepts
// of each edit, and the widget shows that.
class IPAddressBinding : public ControlBinding {
public:
    IPAddressBinding(IPAddressControl& entry, QLineEdit& widget)
        : ControlBinding(entry, widget), entry_(entry), widget_(widget) {
        widget.setContextMenuPolicy(Qt::NoContextMenu);
        widget.setValidator(new QRegularExpressionValidator(
            QRegularExpression(QStringLiteral("[0-9]{0,3}(\\.[0-9]{0,3}){0,3}")), &widget));
        QObject::connect(&widget, &QLineEdit::textEdited, this, [this](const QString& text) {
            runModelAction([&] { entry_.UserType(fromQString(text)); });
            showProperty("Text");
        });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Text") && fromQString(widget_.text()) != entry_.Text()) {
            const QSignalBlocker quiet(widget_);
            widget_.setText(toQString(entry_.Text()));
        }
        if (is(property, "BackColor") || is(property, "ForeColor"))
            showColours(entry_, widget_, {QPalette::Base, QPalette::Text});
    }

private:
    IPAddressControl& entry_;
    QLineEdit& widget_;
};

// Tab n of the model is index n - 1 of the bar. The bar moves by itself when
// clicked; the model decides, and the bar shows the model's choice again.
class TabStripBinding : public ControlBinding {
public:
    TabStripBinding(TabStrip& strip, QTabBar& widget) : ControlBinding(strip, widget), strip_(strip), widget_(widget) {
        QObject::connect(&widget, &QTabBar::tabBarClicked, this, [this](int index) {
            if (index >= 0) runModelAction([&] { strip_.UserSelect(index + 1); });
            showProperty("SelectedTab");
        });
        QObject::connect(&widget, &QTabBar::currentChanged, this, [this](int index) {
            // Keys move the bar too.
            if (index + 1 != strip_.SelectedTab()) runModelAction([&] { strip_.UserSelect(index + 1); });
            showProperty("SelectedTab");
        });
        start();
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        const QSignalBlocker quiet(widget_);
        if (is(property, "Tabs")) {
            while (widget_.count() > strip_.Tabs()) widget_.removeTab(widget_.count() - 1);
            for (int32_t tab = 1; tab <= strip_.Tabs(); ++tab) {
                if (widget_.count() < tab) widget_.addTab(QString());
                widget_.setTabText(tab - 1, toQString(strip_.TabCaption(tab)));
                widget_.setTabVisible(tab - 1, strip_.TabVisible(tab));
            }
        }
        if (is(property, "Tabs") || is(property, "SelectedTab"))
            if (strip_.SelectedTab() > 0) widget_.setCurrentIndex(strip_.SelectedTab() - 1);
    }

private:
    TabStrip& strip_;
    QTabBar& widget_;
};

template <class Model, class View, class Binding>
std::unique_ptr<ControlBinding> bindAs(Control& control, QWidget& widget) {
    auto* model = dynamic_cast<Model*>(&control);
    auto* view = qobject_cast<View*>(&widget);
    if (!model || !view) return nullptr;
    return std::make_unique<Binding>(*model, *view);
}

}  // namespace

int32_t keyAsciiOf(int key, const QString& text) {
    switch (key) {
        case Qt::Key_Backspace:
            return 8;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Escape:
            return 27;
        default:
            break;
    }
    const QList<uint> characters = text.toUcs4();
    if (characters.isEmpty() || characters.front() < 32 || characters.front() == 127) return 0;
    return static_cast<int32_t>(characters.front());
}

ControlBinding::ControlBinding(Control& control, QWidget& widget) : control_(control), widget_(widget) {}

ControlBinding::~ControlBinding() {
    control_.Unsubscribe(token_);
    widget_.removeEventFilter(this);
}

void ControlBinding::start() {
    widget_.installEventFilter(this);
    token_ = control_.Subscribe([this](std::string_view property) { showProperty(property); });
    showProperty("");
}

void ControlBinding::showProperty(std::string_view property) {
    if (is(property, "Enabled")) widget_.setEnabled(control_.Enabled());
    if (is(property, "Visible")) widget_.setVisible(control_.Visible());
    if (is(property, "ToolTipText")) widget_.setToolTip(toQString(control_.ToolTipText()));
    if (is(property, "Font") && control_.HasFont()) widget_.setFont(toQFont(control_.Font(), widget_.font()));
}

bool ControlBinding::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::FocusIn) runModelAction([this] { control_.SetFocus(); });
    return false;
}

std::unique_ptr<ControlBinding> ControlBinding::bind(Control& control, QWidget& widget) {
    // Check boxes and option buttons are buttons too: they come first.
    if (auto bound = bindAs<CheckBox, QCheckBox, CheckBoxBinding>(control, widget)) return bound;
    if (auto bound = bindAs<OptionButton, QRadioButton, OptionBinding>(control, widget)) return bound;
    if (auto bound = bindAs<CommandButton, QAbstractButton, ButtonBinding>(control, widget)) return bound;
    if (auto bound = bindAs<Label, QLabel, LabelBinding>(control, widget)) return bound;
    if (auto bound = bindAs<Frame, QGroupBox, FrameBinding>(control, widget)) return bound;
    if (auto bound = bindAs<TextBox, QLineEdit, TextBoxBinding>(control, widget)) return bound;
    if (auto bound = bindAs<ComboBox, QComboBox, ComboBinding>(control, widget)) return bound;
    if (auto bound = bindAs<IPAddressControl, QLineEdit, IPAddressBinding>(control, widget)) return bound;
    if (auto bound = bindAs<TabStrip, QTabBar, TabStripBinding>(control, widget)) return bound;
    if (auto bound = bindToolBar(control, widget)) return bound;
    return bindGrid(control, widget);
}

}  // namespace qx
