#include "qt/toolbar_binding.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCursor>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QStandardPaths>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QWidgetAction>
#include <vector>

#include "platform/controls/toolbar.h"
#include "qt/colours.h"
#include "qt/model_action.h"
#include "qt/qt_text.h"

namespace qx {

namespace {

constexpr int twipsPerPixel = 15;

// The tools name their icons by the freedesktop names. A desktop's platform
// theme names its icon theme; where there is none (offscreen, a bare window
// manager) the system's icon folders are searched and Adwaita, which the
// scripts install, is used.
void useIconThemeFallback() {
    static const bool done = [] {
        if (!QIcon::themeName().isEmpty()) return true;
        QStringList paths = QIcon::themeSearchPaths();
        for (const QString& dir : QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                                            QStringLiteral("icons"), QStandardPaths::LocateDirectory))
            if (!paths.contains(dir)) paths << dir;
        QIcon::setThemeSearchPaths(paths);
        QIcon::setThemeName(QStringLiteral("Adwaita"));
        return true;
    }();
    (void)done;
}

bool is(std::string_view property, std::string_view name) { return property.empty() || property == name; }

// A label of a band.
class LabelAction : public QWidgetAction {
public:
    LabelAction(const QString& text, QObject* parent) : QWidgetAction(parent), text_(text) {}

protected:
    QWidget* createWidget(QWidget* parent) override {
        auto* label = new QLabel(text_, parent);
        label->setContentsMargins(4, 0, 4, 0);
        return label;
    }

private:
    QString text_;
};

// A control of the dialog that a band shows in its place: its widget (bound
// to the control like any other) moves into the toolbar and, when the band
// lets it go, back to where it was, hidden, never deleted.
//
// The widget can stand in one container only: a second one (the overflow
// menu of a toolbar too narrow for its tools) shows the action without it.
// QWidgetAction's destructor deletes what it created, so the action gives
// the widget back first.
class ControlAction : public QWidgetAction {
public:
    ControlAction(QWidget& widget, QObject* parent)
        : QWidgetAction(parent), widget_(&widget), home_(widget.parentWidget()) {}
    ~ControlAction() override {
        for (QWidget* shown : createdWidgets()) releaseWidget(shown);
    }

protected:
    QWidget* createWidget(QWidget* parent) override {
        if (!widget_ || !createdWidgets().isEmpty()) return nullptr;
        widget_->setParent(parent);
        return widget_;
    }
    void deleteWidget(QWidget* widget) override {
        widget->hide();
        widget->setParent(home_);
    }

private:
    QPointer<QWidget> widget_;
    QPointer<QWidget> home_;
};

class ToolBarBinding : public ControlBinding {
public:
    ToolBarBinding(ToolBar& bar, QToolBar& widget) : ControlBinding(bar, widget), bar_(bar), widget_(widget) {
        useIconThemeFallback();
        start();
    }
    ~ToolBarBinding() override {
        closeMenu();
        clearActions(true);
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Tools")) showTools();
        if (is(property, "Popup")) showPopup();
    }

private:
    // The tools of the docked bands, in order, with a gap between bands.
    std::vector<const Tool*> dockedTools() const {
        std::vector<const Tool*> tools;
        for (int32_t b = 0; b < bar_.BandCount(); ++b) {
            const ToolBand& band = bar_.BandAt(b);
            if (band.IsPopup() || !band.Visible()) continue;
            if (!tools.empty()) tools.push_back(nullptr);
            for (int32_t t = 0; t < band.ToolCount(); ++t) tools.push_back(&band.ToolAt(t));
        }
        return tools;
    }

    void showTools() {
        const std::vector<const Tool*> tools = dockedTools();
        if (tools != shownTools_) rebuild(tools);
        bool allIcons = true;
        for (size_t i = 0; i < shownTools_.size(); ++i) {
            const Tool* tool = shownTools_[i];
            QAction* action = actions_[i];
            if (!tool) continue;
            action->setVisible(tool->Visible());
            if (tool->Type() != Tool::Kind::Button) continue;
            action->setText(toQString(tool->Caption()));
            action->setToolTip(toQString(tool->ToolTipText().empty() ? tool->Caption() : tool->ToolTipText()));
            action->setEnabled(tool->Enabled());
            const QIcon icon = QIcon::fromTheme(toQString(tool->Icon()));
            action->setIcon(icon);
            if (icon.isNull()) allIcons = false;
        }
        widget_.setToolButtonStyle(allIcons ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextOnly);
    }

    void rebuild(const std::vector<const Tool*>& tools) {
        clearActions();
        for (const Tool* tool : tools) {
            QAction* action = nullptr;
            if (!tool || tool->Type() == Tool::Kind::Separator) {
                action = new QAction(this);
                action->setSeparator(true);
            } else if (tool->Type() == Tool::Kind::Label) {
                action = new LabelAction(toQString(tool->Caption()), this);
            } else if (tool->Type() == Tool::Kind::Control) {
                QWidget* shown = widgetOf(tool->Custom());
                if (shown)
                    action = new ControlAction(*shown, this);
                else
                    action = new QAction(this);  // a control with no widget takes no room
            } else {
                action = new QAction(this);
                const std::wstring id = tool->Id();
                QObject::connect(action, &QAction::triggered, this,
                                 [this, id] { runModelAction([this, &id] { bar_.UserClickTool(id); }); });
            }
            action->setObjectName(toQString(tool && !tool->Id().empty() ? tool->Id() : std::wstring()));
            widget_.addAction(action);
            actions_.push_back(action);
        }
        shownTools_ = tools;
    }

    // Actions are removed from the toolbar first, so that a control's widget
    // is let go, not deleted; later, since a handler of one of them may be
    // what changed the tools.
    void clearActions(bool now = false) {
        for (QAction* action : actions_) widget_.removeAction(action);
        for (QAction* action : actions_) {
            if (now)
                delete action;
            else
                action->deleteLater();
        }
        actions_.clear();
        shownTools_.clear();
    }

    QWidget* widgetOf(const Control* control) const {
        if (!control) return nullptr;
        QWidget* window = widget_.window();
        return window ? window->findChild<QWidget*>(toQString(control->Name())) : nullptr;
    }

    void showPopup() {
        const PopupPlace* place = bar_.OpenPopup();
        if (!place) {
            closeMenu();
            return;
        }
        if (menu_ && menuBand_ == place->Band && menuOver_ == place->Over && menuX_ == place->X && menuY_ == place->Y &&
            menu_->isVisible())
            return;
        closeMenu();
        const int generation = ++generation_;
        auto* menu = new QMenu(&widget_);
        menu->setObjectName(toQString(place->Band->Name()));
        menu->setAttribute(Qt::WA_DeleteOnClose, false);
        menu->setFont(toQFont(bar_.MenuFont(), menu->font()));
        const ToolBand& band = *place->Band;
        for (int32_t t = 0; t < band.ToolCount(); ++t) {
            const Tool& tool = band.ToolAt(t);
            if (!tool.Visible()) continue;
            switch (tool.Type()) {
                case Tool::Kind::Separator:
                    menu->addSeparator();
                    break;
                case Tool::Kind::Label:
                    menu->addAction(toQString(tool.Caption()))->setEnabled(false);
                    break;
                case Tool::Kind::Control:
                    break;
                case Tool::Kind::Button: {
                    QAction* action = menu->addAction(toQString(tool.Caption()));
                    action->setObjectName(toQString(tool.Id()));
                    action->setToolTip(toQString(tool.ToolTipText()));
                    action->setIcon(QIcon::fromTheme(toQString(tool.Icon())));
                    action->setEnabled(tool.Enabled());
                    const std::wstring id = tool.Id();
                    QObject::connect(action, &QAction::triggered, this,
                                     [this, id] { runModelAction([this, &id] { bar_.UserPickPopupTool(id); }); });
                    break;
                }
            }
        }
        // Qt hides a menu before it reports the pick: the dismissal waits a
        // turn of the event loop and is dropped when the pick came first.
        QObject::connect(menu, &QMenu::aboutToHide, this, [this, generation] {
            if (closingMenu_) return;
            QTimer::singleShot(0, this, [this, generation] {
                if (generation == generation_ && bar_.OpenPopup()) runModelAction([this] { bar_.UserDismissPopup(); });
            });
        });
        menu_ = menu;
        menuBand_ = place->Band;
        menuOver_ = place->Over;
        menuX_ = place->X;
        menuY_ = place->Y;
        QWidget* over = widgetOf(place->Over);
        menu->popup(over ? popupPoint(*over, place->X, place->Y) : QCursor::pos());
    }

    void closeMenu() {
        if (!menu_) return;
        QMenu* menu = menu_;
        menu_ = nullptr;
        menuBand_ = nullptr;
        closingMenu_ = true;
        menu->hide();
        closingMenu_ = false;
        // The menu may be the one whose action is being reported.
        menu->deleteLater();
    }

    ToolBar& bar_;
    QToolBar& widget_;
    std::vector<const Tool*> shownTools_;
    std::vector<QAction*> actions_;
    QPointer<QMenu> menu_;
    const ToolBand* menuBand_ = nullptr;
    const Control* menuOver_ = nullptr;
    int32_t menuX_ = 0, menuY_ = 0;
    bool closingMenu_ = false;
    int generation_ = 0;
};

}  // namespace

QPoint popupPoint(QWidget& over, int X, int Y) {
    QPoint point(X / twipsPerPixel, Y / twipsPerPixel);
    if (auto* table = qobject_cast<QTableView*>(&over)) {
        // Twips over a grid count from its top left cell, scrolled or not;
        // a shown header row is that row.
        point -= QPoint(table->horizontalHeader()->offset(), table->verticalHeader()->offset());
        QHeaderView* header = table->horizontalHeader();
        return header->isVisible() ? header->mapToGlobal(point) : table->viewport()->mapToGlobal(point);
    }
    if (auto* view = qobject_cast<QAbstractScrollArea*>(&over)) return view->viewport()->mapToGlobal(point);
    return over.mapToGlobal(point);
}

std::unique_ptr<ControlBinding> bindToolBar(Control& control, QWidget& widget) {
    auto* bar = dynamic_cast<ToolBar*>(&control);
    auto* view = qobject_cast<QToolBar*>(&widget);
    if (!bar || !view) return nullptr;
    return std::make_unique<ToolBarBinding>(*bar, *view);
}

}  // namespace qx
