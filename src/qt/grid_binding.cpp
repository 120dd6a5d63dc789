#include "qt/grid_binding.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <algorithm>

#include "platform/controls/grid.h"
#include "qt/colours.h"
#include "qt/model_action.h"
#include "qt/qt_text.h"

namespace qx {

namespace {

constexpr int twipsPerPixel = 15;
constexpr int ellipsisWidth = 20;

bool is(std::string_view property, std::string_view name) { return property.empty() || property == name; }

// The grid's scrollable and fixed columns as a table; its fixed rows are the header.
class GridTableModel : public QAbstractTableModel {
public:
    GridTableModel(Grid& grid, QWidget& view) : grid_(grid), view_(view) {}

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : std::max(0, grid_.Rows() - grid_.FixedRows());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : grid_.Cols(); }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        const int32_t row = gridRow(index.row());
        const int32_t col = index.column();
        switch (role) {
            case Qt::DisplayRole:
                return toQString(grid_.TextMatrix(row, col));
            case Qt::BackgroundRole:
                return QBrush(toQColor(grid_.CellBackColor(row, col), view_.palette()));
            case Qt::ForegroundRole:
                return QBrush(toQColor(grid_.CellForeColor(row, col), view_.palette()));
            default:
                return {};
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal || grid_.FixedRows() < 1) return {};
        if (section < 0 || section >= grid_.Cols()) return {};
        return toQString(grid_.TextMatrix(0, section));
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        if (!index.isValid()) return Qt::NoItemFlags;
        if (grid_.IsFixed(gridRow(index.row()), index.column())) return Qt::ItemIsEnabled;
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    }

    int32_t gridRow(int viewRow) const { return viewRow + grid_.FixedRows(); }
    QModelIndex viewIndex(int32_t row, int32_t col) const {
        return row < grid_.FixedRows() ? QModelIndex() : index(row - grid_.FixedRows(), col);
    }
    void reset() {
        beginResetModel();
        endResetModel();
    }
    void textChanged() {
        if (rowCount() > 0 && columnCount() > 0)
            emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        emit headerDataChanged(Qt::Horizontal, 0, std::max(0, columnCount() - 1));
    }

private:
    Grid& grid_;
    QWidget& view_;
};

// Paints the ellipsis button on the current cell and makes the cell editor.
class GridDelegate : public QStyledItemDelegate {
public:
    GridDelegate(Grid& grid, GridTableModel& model, QObject* parent)
        : QStyledItemDelegate(parent), grid_(grid), model_(model) {}

    static QRect ellipsisRect(const QRect& cell) {
        return QRect(cell.right() - ellipsisWidth + 1, cell.top(), ellipsisWidth, cell.height());
    }
    bool showsEllipsis(const QModelIndex& index) const {
        return grid_.ComboList() == Grid::EllipsisButton && !grid_.IsEditing() &&
               model_.gridRow(index.row()) == grid_.Row() && index.column() == grid_.Col();
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if (!showsEllipsis(index)) return;
        QStyleOptionButton button;
        button.rect = ellipsisRect(option.rect);
        button.text = QStringLiteral("...");
        button.state = QStyle::State_Enabled | QStyle::State_Raised;
        QWidget* widget = qobject_cast<QWidget*>(parent());
        QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_PushButton, &button, painter, widget);
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        auto* editor = new QLineEdit(parent);
        editor->setObjectName(QStringLiteral("qt_grid_cell_editor"));
        editor->setFrame(false);
        editor->setMaxLength(grid_.EditMaxLength() > 0 ? grid_.EditMaxLength() : 32767);
        editor->setText(toQString(grid_.EditText()));
        editor->selectAll();
        Grid& grid = grid_;
        QObject::connect(editor, &QLineEdit::textEdited, editor,
                         [&grid](const QString& text) { runModelAction([&] { grid.UserType(fromQString(text)); }); });
        return editor;
    }
    void setEditorData(QWidget*, const QModelIndex&) const override {}
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}

private:
    Grid& grid_;
    GridTableModel& model_;
};

class GridBinding : public ControlBinding {
public:
    GridBinding(Grid& grid, QTableView& view)
        : ControlBinding(grid, view), grid_(grid), view_(view), model_(grid, view), delegate_(grid, model_, &view) {
        view.setModel(&model_);
        view.setItemDelegate(&delegate_);
        view.setEditTriggers(QAbstractItemView::NoEditTriggers);
        view.setSelectionMode(QAbstractItemView::SingleSelection);
        view.setSelectionBehavior(QAbstractItemView::SelectItems);
        view.verticalHeader()->hide();
        view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view.verticalHeader()->setDefaultSectionSize(view.fontMetrics().height() + 6);
        view.horizontalHeader()->setSectionsClickable(false);
        view.horizontalHeader()->setHighlightSections(false);
        view.horizontalHeader()->setStretchLastSection(true);
        view.setWordWrap(false);
        view.viewport()->installEventFilter(this);
        start();
    }
    ~GridBinding() override {
        view_.viewport()->removeEventFilter(this);
        view_.setItemDelegate(nullptr);
        view_.setModel(nullptr);
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Cells")) {
            closeEditor();
            model_.reset();
            showWidths();
        }
        if (is(property, "Text")) model_.textChanged();
        if (is(property, "ColWidth")) showWidths();
        if (is(property, "SelectionMode"))
            view_.setSelectionBehavior(grid_.SelectionMode() == Grid::SelectionByRow ? QAbstractItemView::SelectRows
                                                                                     : QAbstractItemView::SelectItems);
        if (is(property, "Cells") || is(property, "Current") || is(property, "SelectionMode")) showCurrent();
        if (is(property, "ComboList") || is(property, "Current")) view_.viewport()->update();
        if (is(property, "Editing") || is(property, "Cells")) showEditor();
        if (is(property, "EditText")) showEditText();
        if (is(property, "MouseIcon")) {
            const QPixmap pointer = toQPixmap(grid_.MouseIcon());
            if (pointer.isNull())
                view_.viewport()->unsetCursor();
            else
                view_.viewport()->setCursor(QCursor(pointer, 0, 0));
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == view_.viewport()) return viewportEvent(event);
        if (watched == &view_ && event->type() == QEvent::KeyPress) return keyPressed(*static_cast<QKeyEvent*>(event));
        if (editor_ && watched == editor_) return editorEvent(event);
        return ControlBinding::eventFilter(watched, event);
    }

private:
    bool viewportEvent(QEvent* event) {
        const auto type = event->type();
        if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonDblClick) return false;
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton) return true;
        const QPoint at = mouse->position().toPoint();
        const QModelIndex index = view_.indexAt(at);
        if (!index.isValid()) return true;
        view_.setFocus(Qt::MouseFocusReason);
        const int32_t row = model_.gridRow(index.row());
        const int32_t col = index.column();
        runModelAction([&] {
            if (type == QEvent::MouseButtonDblClick) {
                grid_.UserDoubleClick(row, col);
            } else if (delegate_.showsEllipsis(index) &&
                       GridDelegate::ellipsisRect(view_.visualRect(index)).contains(at)) {
                grid_.UserCellButtonClick();
            } else {
                grid_.UserClick(row, col);
            }
        });
        return true;
    }

    // Arrow keys move the current cell; a character starts the editor of an
    // editable grid; Enter ends an edit. Tab and Escape stay the dialog's.
    bool keyPressed(const QKeyEvent& key) {
        int32_t row = grid_.Row(), col = grid_.Col();
        switch (key.key()) {
            case Qt::Key_Up:
                --row;
                break;
            case Qt::Key_Down:
                ++row;
                break;
            case Qt::Key_Left:
                --col;
                break;
            case Qt::Key_Right:
                ++col;
                break;
            case Qt::Key_Return:
            case Qt::Key_Enter:
                runModelAction([&] { grid_.UserKeyPress(13); });
                return true;
            case Qt::Key_Tab:
            case Qt::Key_Backtab:
            case Qt::Key_Escape:
                return false;
            default: {
                const int32_t code = keyAsciiOf(key.key(), key.text());
                if (code < 32) return code != 0;
                // An open editor takes the key as if it had the focus: the
                // character goes in where its caret is.
                if (auto* line = qobject_cast<QLineEdit*>(editor_)) {
                    line->setFocus();
                    line->insert(key.text());
                    runModelAction([&] { grid_.UserType(fromQString(line->text())); });
                    return true;
                }
                if (!grid_.Editable()) return true;
                runModelAction([&] { grid_.UserType(fromQString(key.text())); });
                return true;
            }
        }
        if (row >= 0 && col >= 0) runModelAction([&] { grid_.UserMoveTo(row, col); });
        return true;
    }

    bool editorEvent(QEvent* event) {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                runModelAction([this] { grid_.UserEndEdit(); });
                view_.setFocus();
                return true;
            }
            if (key == Qt::Key_Escape) {
                runModelAction([this] { grid_.UserCancelEdit(); });
                view_.setFocus();
                return true;
            }
        }
        // Leaving the editor for another widget ends the edit, as the grid's own editor does.
        if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            runModelAction([this] { grid_.UserEndEdit(); });
        return false;
    }

    void showWidths() {
        for (int32_t c = 0; c < grid_.Cols(); ++c)
            if (grid_.ColWidth(c) > 0) view_.setColumnWidth(c, grid_.ColWidth(c) / twipsPerPixel);
    }

    void showCurrent() {
        const QModelIndex current = model_.viewIndex(grid_.Row(), grid_.Col());
        if (!current.isValid()) return;
        QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect;
        // Selecting from code ignores the view's behaviour: a whole row has to be asked for.
        if (grid_.SelectionMode() == Grid::SelectionByRow) flags |= QItemSelectionModel::Rows;
        view_.selectionModel()->setCurrentIndex(current, flags);
        view_.scrollTo(current);
    }

    void showEditor() {
        const QModelIndex current = model_.viewIndex(grid_.Row(), grid_.Col());
        if (grid_.IsEditing() && current.isValid()) {
            if (editor_ && editorIndex_ == current) return;
            closeEditor();
            editorIndex_ = QPersistentModelIndex(current);
            view_.openPersistentEditor(current);
            editor_ = view_.indexWidget(current);
            if (editor_) {
                editor_->installEventFilter(this);
                editor_->setFocus();
            }
        } else {
            closeEditor();
        }
    }

    void showEditText() {
        auto* line = qobject_cast<QLineEdit*>(editor_);
        if (line && fromQString(line->text()) != grid_.EditText()) line->setText(toQString(grid_.EditText()));
    }

    void closeEditor() {
        if (!editor_) return;
        QWidget* editor = editor_;
        editor_ = nullptr;
        editor->removeEventFilter(this);
        if (editorIndex_.isValid()) view_.closePersistentEditor(editorIndex_);
        editorIndex_ = QPersistentModelIndex();
    }

    Grid& grid_;
    QTableView& view_;
    GridTableModel model_;
    GridDelegate delegate_;
    QWidget* editor_ = nullptr;
    QPersistentModelIndex editorIndex_;
};

}  // namespace

std::unique_ptr<ControlBinding> bindGrid(Control& control, QWidget& widget) {
    auto* grid = dynamic_cast<Grid*>(&control);
    auto* view = qobject_cast<QTableView*>(&widget);
    if (!grid || !view) return nullptr;
    return std::make_unique<GridBinding>(*grid, *view);
}

}  // namespace qx
