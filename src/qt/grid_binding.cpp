#include "qt/grid_binding.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <algorithm>

#include "platform/controls/grid.h"
#include "platform/host/host_context.h"
#include "qt/colours.h"
#include "qt/model_action.h"
#include "qt/qt_text.h"

namespace qx {

namespace {

constexpr int twipsPerPixel = 15;
constexpr int ellipsisWidth = 20;
constexpr int dropDownWidth = 16;

// The caret, when it stands in this grid: its cell, and its place in the
// cell in the view's pixels.
struct CaretInCell {
    int32_t Row = -1;
    int32_t Col = -1;
    int X = 0;
    int Y = 0;
    int Width = 0;
    int Height = 0;
};

Qt::Alignment toQtAlignment(int32_t alignment) {
    const Qt::Alignment horizontal[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    const Qt::Alignment vertical[] = {Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom};
    return horizontal[alignment / 3] | vertical[alignment % 3];
}

bool is(std::string_view property, std::string_view name) { return property.empty() || property == name; }

// The grid's scrollable and fixed columns as a table; its fixed rows are the header.
class GridTableModel : public QAbstractTableModel {
public:
    GridTableModel(Grid& grid, QWidget& view) : grid_(grid), view_(view) { takeShape(); }

    // The shape the view was last told of: while the grid's redrawing is off
    // its own may have moved on.
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : cols_; }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        const int32_t row = gridRow(index.row());
        const int32_t col = index.column();
        if (row >= grid_.Rows() || col >= grid_.Cols()) return {};
        switch (role) {
            case Qt::DisplayRole:
                return toQString(grid_.TextMatrix(row, col));
            case Qt::BackgroundRole:
                return QBrush(toQColor(grid_.CellBackColor(row, col), view_.palette()));
            case Qt::ForegroundRole:
                return QBrush(toQColor(grid_.CellForeColor(row, col), view_.palette()));
            case Qt::TextAlignmentRole: {
                const int32_t alignment = grid_.ColAlignment(col);
                if (alignment == Grid::AlignGeneral) return {};
                return QVariant::fromValue(toQtAlignment(alignment));
            }
            case Qt::ToolTipRole:
                return grid_.ToolTipText().empty() ? QVariant() : QVariant(toQString(grid_.ToolTipText()));
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
        takeShape();
        announcedRow_ = -1;
        endResetModel();
    }
    // Only the row that changed is asked for again, when the grid says which.
    // A row is announced once until the view paints: the view reads the
    // cells when it paints, so the row's further changes until then (a
    // message row painted anew changes each of its 500 cells) need no word.
    void textChanged(int32_t row) {
        if (row >= grid_.FixedRows() && row - grid_.FixedRows() < rowCount() && columnCount() > 0) {
            const int viewRow = row - grid_.FixedRows();
            if (viewRow == announcedRow_) return;
            announcedRow_ = viewRow;
            emit dataChanged(index(viewRow, 0), index(viewRow, columnCount() - 1));
            return;
        }
        announcedRow_ = -1;
        if (rowCount() > 0 && columnCount() > 0)
            emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        emit headerDataChanged(Qt::Horizontal, 0, std::max(0, columnCount() - 1));
    }
    // The view is painting: what changes from now on is announced again.
    void painted() { announcedRow_ = -1; }

private:
    void takeShape() {
        rows_ = std::max(0, grid_.Rows() - grid_.FixedRows());
        cols_ = grid_.Cols();
    }

    Grid& grid_;
    QWidget& view_;
    int rows_ = 0;
    int cols_ = 0;
    // The view row announced since the view last painted, or -1.
    int announcedRow_ = -1;
};

// Paints the ellipsis button on the current cell and makes the cell editor.
class GridDelegate : public QStyledItemDelegate {
public:
    GridDelegate(Grid& grid, GridTableModel& model, const CaretInCell& caret, QObject* parent)
        : QStyledItemDelegate(parent), grid_(grid), model_(model), caret_(caret) {}

    static QRect ellipsisRect(const QRect& cell) {
        return QRect(cell.right() - ellipsisWidth + 1, cell.top(), ellipsisWidth, cell.height());
    }
    static QRect dropDownRect(const QRect& cell) {
        return QRect(cell.right() - dropDownWidth + 1, cell.top(), dropDownWidth, cell.height());
    }
    bool isCurrent(const QModelIndex& index) const {
        return model_.gridRow(index.row()) == grid_.Row() && index.column() == grid_.Col();
    }
    bool showsEllipsis(const QModelIndex& index) const {
        return grid_.ComboList() == Grid::EllipsisButton && !grid_.IsEditing() && isCurrent(index);
    }
    // The button of a drop-down list on the current cell of an editable grid.
    bool showsDropDown(const QModelIndex& index) const {
        return grid_.Editable() && !grid_.IsEditing() && isCurrent(index) && !grid_.ComboItems().empty();
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        QWidget* widget = qobject_cast<QWidget*>(parent());
        QStyle* style = widget ? widget->style() : QApplication::style();
        if (showsEllipsis(index)) {
            QStyleOptionButton button;
            button.rect = ellipsisRect(option.rect);
            button.text = QStringLiteral("...");
            button.state = QStyle::State_Enabled | QStyle::State_Raised;
            style->drawControl(QStyle::CE_PushButton, &button, painter, widget);
        } else if (showsDropDown(index)) {
            QStyleOptionButton button;
            button.rect = dropDownRect(option.rect);
            button.state = QStyle::State_Enabled | QStyle::State_Raised;
            style->drawControl(QStyle::CE_PushButton, &button, painter, widget);
            QStyleOption arrow;
            arrow.rect = button.rect.adjusted(3, 3, -3, -3);
            arrow.palette = option.palette;
            arrow.state = QStyle::State_Enabled;
            style->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, painter, widget);
        }
        if (model_.gridRow(index.row()) == caret_.Row && index.column() == caret_.Col) {
            // A solid bar, as the system draws a caret without a bitmap.
            const QRect bar(option.rect.left() + caret_.X, option.rect.top() + caret_.Y, caret_.Width,
                            std::min(caret_.Height, option.rect.height() - caret_.Y));
            painter->fillRect(bar, option.palette.color(QPalette::Text));
        }
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        Grid& grid = grid_;
        const std::vector<std::wstring> items = grid_.ComboItems();
        if (!items.empty()) {
            auto* list = new QComboBox(parent);
            list->setObjectName(QStringLiteral("qt_grid_cell_list"));
            list->setFrame(false);
            for (const std::wstring& item : items) list->addItem(toQString(item));
            const auto chosen = std::find(items.begin(), items.end(), grid_.EditText());
            list->setCurrentIndex(chosen == items.end() ? -1 : static_cast<int>(chosen - items.begin()));
            QObject::connect(list, &QComboBox::activated, list, [&grid](int index) {
                runModelAction([&] { grid.UserPickComboItem(static_cast<int32_t>(index)); });
            });
            return list;
        }
        auto* editor = new QLineEdit(parent);
        editor->setObjectName(QStringLiteral("qt_grid_cell_editor"));
        editor->setFrame(false);
        editor->setMaxLength(grid_.EditMaxLength() > 0 ? grid_.EditMaxLength() : 32767);
        editor->setText(toQString(grid_.EditText()));
        editor->selectAll();
        QObject::connect(editor, &QLineEdit::textEdited, editor,
                         [&grid](const QString& text) { runModelAction([&] { grid.UserType(fromQString(text)); }); });
        return editor;
    }
    void setEditorData(QWidget*, const QModelIndex&) const override {}
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}

private:
    Grid& grid_;
    GridTableModel& model_;
    const CaretInCell& caret_;
};

class GridBinding : public ControlBinding {
public:
    GridBinding(Grid& grid, QTableView& view)
        : ControlBinding(grid, view),
          grid_(grid),
          view_(view),
          model_(grid, view),
          delegate_(grid, model_, caret_, &view),
          host_(&host()) {
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
        // A column is as narrow as the grid says: a message grid's are 20 pixels.
        view.horizontalHeader()->setMinimumSectionSize(1);
        view.setWordWrap(false);
        // Two hexadecimal digits in a 20-pixel cell are shown whole, never as "...".
        view.setTextElideMode(Qt::ElideNone);
        // MouseMove is the grid's also while no button is down.
        view.viewport()->setMouseTracking(true);
        view.viewport()->installEventFilter(this);
        caretToken_ = host_->SubscribeCaret([this] { showCaret(); });
        start();
    }
    ~GridBinding() override {
        host_->UnsubscribeCaret(caretToken_);
        view_.viewport()->removeEventFilter(this);
        view_.setItemDelegate(nullptr);
        view_.setModel(nullptr);
    }

protected:
    void showProperty(std::string_view property) override {
        ControlBinding::showProperty(property);
        if (is(property, "Redraw")) view_.setUpdatesEnabled(grid_.Redraw());
        // Switched on again, the grid is shown anew as after a change of shape.
        const bool redrawn = property == "Redraw" && grid_.Redraw();
        if (is(property, "Cells") || redrawn) {
            closeEditor();
            model_.reset();
            showWidths();
            // A grid without fixed rows has no header row.
            view_.horizontalHeader()->setVisible(grid_.FixedRows() > 0);
        }
        if (property == "Text") model_.textChanged(grid_.ChangedRow());
        if (property.empty()) model_.textChanged(-1);
        if (is(property, "ColWidth")) showWidths();
        if (is(property, "ColWidth") || is(property, "RowHeight") || is(property, "Cells") || redrawn) showCaret();
        if (property == "ColAlignment") model_.textChanged(-1);
        if (is(property, "ExtendLastCol")) view_.horizontalHeader()->setStretchLastSection(grid_.ExtendLastCol());
        if (is(property, "SelectionMode"))
            view_.setSelectionBehavior(grid_.SelectionMode() == Grid::SelectionByRow ? QAbstractItemView::SelectRows
                                                                                     : QAbstractItemView::SelectItems);
        if (is(property, "Cells") || is(property, "Current") || is(property, "SelectionMode") || redrawn) showCurrent();
        if (is(property, "ComboList") || is(property, "ColComboList") || is(property, "Editing"))
            view_.viewport()->update();
        // The current cell's buttons: only the cell left and the cell come to are painted again.
        if (property == "Current") {
            updateCell(currentRow_, currentCol_);
            updateCell(grid_.Row(), grid_.Col());
        }
        currentRow_ = grid_.Row();
        currentCol_ = grid_.Col();
        if (is(property, "Editing") || is(property, "Cells") || redrawn) showEditor();
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
    static int32_t shiftOf(Qt::KeyboardModifiers modifiers) {
        int32_t shift = 0;
        if (modifiers & Qt::ShiftModifier) shift |= keys::ShiftMask;
        if (modifiers & Qt::ControlModifier) shift |= keys::CtrlMask;
        if (modifiers & Qt::AltModifier) shift |= keys::AltMask;
        return shift;
    }
    static int32_t buttonsOf(Qt::MouseButtons buttons) {
        int32_t button = 0;
        if (buttons & Qt::LeftButton) button |= Grid::LeftButton;
        if (buttons & Qt::RightButton) button |= Grid::RightButton;
        if (buttons & Qt::MiddleButton) button |= Grid::MiddleButton;
        return button;
    }

    bool viewportEvent(QEvent* event) {
        const auto type = event->type();
        if (type == QEvent::Paint) {
            model_.painted();
            return false;
        }
        if (type == QEvent::MouseMove) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            const QModelIndex index = view_.indexAt(mouse->position().toPoint());
            const int32_t row = index.isValid() ? model_.gridRow(index.row()) : -1;
            const int32_t col = index.isValid() ? index.column() : -1;
            runModelAction(
                [&] { grid_.UserMouseMove(row, col, buttonsOf(mouse->buttons()), shiftOf(mouse->modifiers())); });
            return false;
        }
        if (type == QEvent::MouseButtonRelease) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            // A left click is told as a whole at the press.
            if (mouse->button() == Qt::LeftButton) return false;
            const QModelIndex index = view_.indexAt(mouse->position().toPoint());
            const int32_t row = index.isValid() ? model_.gridRow(index.row()) : -1;
            const int32_t col = index.isValid() ? index.column() : -1;
            view_.setFocus(Qt::MouseFocusReason);
            runModelAction(
                [&] { grid_.UserMouseUp(buttonsOf(mouse->button()), row, col, shiftOf(mouse->modifiers())); });
            return true;
        }
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
            } else if (delegate_.showsDropDown(index) &&
                       GridDelegate::dropDownRect(view_.visualRect(index)).contains(at)) {
                grid_.UserDropDown();
                if (auto* list = qobject_cast<QComboBox*>(editor_)) list->showPopup();
            } else {
                grid_.UserClick(row, col);
            }
        });
        return true;
    }

    // The arrows, Home, End, the page keys and Delete go down as KeyDown
    // (the grid moves the current cell itself); a character starts the editor
    // of an editable grid and is KeyPress on any other; Enter ends an edit.
    // Tab and Escape stay the dialog's.
    bool keyPressed(const QKeyEvent& key) {
        int32_t keyCode = 0;
        switch (key.key()) {
            case Qt::Key_PageUp:
                keyCode = keys::PageUp;
                break;
            case Qt::Key_PageDown:
                keyCode = keys::PageDown;
                break;
            case Qt::Key_End:
                keyCode = keys::End;
                break;
            case Qt::Key_Home:
                keyCode = keys::Home;
                break;
            case Qt::Key_Left:
                keyCode = keys::Left;
                break;
            case Qt::Key_Up:
                keyCode = keys::Up;
                break;
            case Qt::Key_Right:
                keyCode = keys::Right;
                break;
            case Qt::Key_Down:
                keyCode = keys::Down;
                break;
            case Qt::Key_Delete:
                keyCode = keys::Delete;
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
                if (code == 0) return false;
                if (code < 32 && (editor_ || grid_.Editable())) return true;
                // A drop-down list takes no typing.
                if (qobject_cast<QComboBox*>(editor_)) return true;
                // An open editor takes the key as if it had the focus: the
                // character goes in where its caret is.
                if (auto* line = qobject_cast<QLineEdit*>(editor_)) {
                    line->setFocus();
                    line->insert(key.text());
                    runModelAction([&] { grid_.UserType(fromQString(line->text())); });
                    return true;
                }
                if (!grid_.Editable()) {
                    runModelAction([&] { grid_.UserKeyPress(code); });
                    return true;
                }
                runModelAction([&] { grid_.UserType(fromQString(key.text())); });
                return true;
            }
        }
        const int32_t shift = shiftOf(key.modifiers());
        runModelAction([&] { grid_.UserKeyDown(keyCode, shift); });
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

    // The grid tells "ColWidth" without the column: a message grid building
    // its 501 columns tells it 501 times, so only widths that differ are set.
    void showWidths() {
        const int32_t cols = std::min(grid_.Cols(), model_.columnCount());
        for (int32_t c = 0; c < cols; ++c) {
            const int32_t twips = grid_.ColWidth(c);
            if (twips > 0 && view_.columnWidth(c) != twips / twipsPerPixel)
                view_.setColumnWidth(c, twips / twipsPerPixel);
        }
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
        if (auto* list = qobject_cast<QComboBox*>(editor_)) {
            const int index = list->findText(toQString(grid_.EditText()), Qt::MatchExactly);
            if (index != list->currentIndex()) list->setCurrentIndex(index);
            return;
        }
        auto* line = qobject_cast<QLineEdit*>(editor_);
        if (line && fromQString(line->text()) != grid_.EditText()) line->setText(toQString(grid_.EditText()));
    }

    // Finds the cell the caret stands in from its place in pixels of the
    // grid's logical area (as the editor computed it from the cells' twips at
    // the screen's dots per inch) and repaints.
    void showCaret() {
        const CaretInCell before = caret_;
        caret_ = CaretInCell{};
        const CaretState& caret = host_->Caret;
        if (caret.Window == grid_.hWnd() && caret.Shown && grid_.Rows() > 0 && grid_.Cols() > 0) {
            const double twipsPerCaretPixel = twipsPerPixel * 96.0 / std::max(1, host_->DpiX);
            const auto x = static_cast<int32_t>(caret.X * twipsPerCaretPixel);
            const auto y = static_cast<int32_t>(caret.Y * twipsPerCaretPixel);
            int32_t left = 0, top = 0, col = 0, row = 0;
            while (col < grid_.Cols() - 1 && left + grid_.ColWidth(col) <= x) left += grid_.ColWidth(col++);
            while (row < grid_.Rows() - 1 && top + grid_.RowHeight(row) <= y) top += grid_.RowHeight(row++);
            const QModelIndex index = model_.viewIndex(row, col);
            const int cellHeight = index.isValid() ? view_.rowHeight(index.row()) : 0;
            caret_.Row = row;
            caret_.Col = col;
            caret_.X = (x - left) / twipsPerPixel;
            // The view's rows have a height of their own: the place scales to it.
            const int32_t rowTwips = std::max(1, grid_.RowHeight(row));
            caret_.Y = static_cast<int>(static_cast<int64_t>(y - top) * cellHeight / rowTwips);
            caret_.Width = std::max(1, caret.Width);
            caret_.Height = std::min(caret.Height, cellHeight > 0 ? cellHeight : caret.Height);
        }
        // Only the cells the caret left and came to are painted again.
        if (before.Row == caret_.Row && before.Col == caret_.Col && before.X == caret_.X && before.Y == caret_.Y &&
            before.Width == caret_.Width && before.Height == caret_.Height)
            return;
        updateCell(before.Row, before.Col);
        updateCell(caret_.Row, caret_.Col);
    }

    void updateCell(int32_t row, int32_t col) {
        if (row < 0 || col < 0) return;
        const QModelIndex index = model_.viewIndex(row, col);
        if (index.isValid()) view_.viewport()->update(view_.visualRect(index));
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
    CaretInCell caret_;
    // The current cell the view was last told of.
    int32_t currentRow_ = -1;
    int32_t currentCol_ = -1;
    GridTableModel model_;
    GridDelegate delegate_;
    HostContext* host_;
    int32_t caretToken_ = 0;
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
