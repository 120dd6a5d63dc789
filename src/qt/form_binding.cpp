#include "qt/form_binding.h"

#include <QIcon>
#include <QLayout>
#include <QTabBar>
#include <set>

#include "qt/colours.h"
#include "qt/qt_text.h"

namespace qx {

namespace {
// A tab bar names its own scroll buttons; they are Qt's, not the form's.
bool isInsideTabBar(const QWidget& widget) {
    for (const QWidget* parent = widget.parentWidget(); parent; parent = parent->parentWidget())
        if (qobject_cast<const QTabBar*>(parent)) return true;
    return false;
}

// The window at that height, or at the least its layout allows.
void applyHeight(QWidget& window, int height) {
    if (QLayout* layout = window.layout()) layout->activate();
    window.resize(window.width(), height);
}
}  // namespace

FormBinding::FormBinding(Form& form, QWidget& window) : form_(form), window_(window) {
    std::set<QString> bound;
    for (Control* control : form.Controls()) {
        const QString name = toQString(control->Name());
        auto* widget = window.findChild<QWidget*>(name);
        std::unique_ptr<ControlBinding> binding = widget ? ControlBinding::bind(*control, *widget) : nullptr;
        if (!binding) {
            controlsWithoutWidget_.push_back(control->Name());
            continue;
        }
        bound.insert(name);
        bindings_.push_back(std::move(binding));
    }
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const QString name = widget->objectName();
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_")) || bound.count(name) || isInsideTabBar(*widget))
            continue;
        widgetsWithoutControl_.push_back(name);
    }
    token_ = form.Subscribe([this](std::string_view property) { showForm(property); });
    showForm("");
}

FormBinding::~FormBinding() { form_.Unsubscribe(token_); }

QWidget* FormBinding::WidgetOf(const Control& control) const {
    for (const auto& binding : bindings_)
        if (&binding->BoundControl() == &control) return &binding->Widget();
    return nullptr;
}

void FormBinding::showForm(std::string_view property) {
    if (property.empty() || property == "Caption") window_.setWindowTitle(toQString(form_.Caption()));
    if (property.empty() || property == "Icon") {
        const QPixmap icon = toQPixmap(form_.Icon());
        if (!icon.isNull()) window_.setWindowIcon(QIcon(icon));
    }
    if (property.empty() || property == "Font") window_.setFont(toQFont(form_.Font(), window_.font()));
    // Twips at 96 dots per inch: 15 a pixel. The layout is brought up to date
    // first: a panel just shown or hidden must count in the minimum height,
    // or the window keeps the height of the panel it left.
    if ((property.empty() || property == "Height") && form_.Height() > 0) {
        *wantedHeight_ = form_.Height() / 15;
        applyHeight(window_, *wantedHeight_);
        // A dialog may size itself before it hides the rows that made it
        // taller: the height held back by them is taken once they are gone.
        if (window_.height() != *wantedHeight_)
            QMetaObject::invokeMethod(
                &window_, [window = &window_, wanted = wantedHeight_] { applyHeight(*window, *wanted); },
                Qt::QueuedConnection);
    }
}

}  // namespace qx
