// The grid, the tab strip and the IP entry on screen: what the model holds
// is shown, and mouse and keys reach the model's User* actions.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/ip_address_control.h"
#include "platform/controls/tab_strip.h"
#include "platform/host/host_context.h"
#include "platform/host/host_services.h"
#include "qt/control_binding.h"
#include "qt/qt_text.h"

namespace qx {
namespace {

class Controls : public Form {
public:
    Controls() : Form(L"Controls") {
        addControls({&grid, &tabs, &ip});
        grid.Cols(3);
        grid.Rows(4);
        grid.TextMatrix(0, 0, L"#");
        grid.TextMatrix(0, 1, L"Text");
        grid.TextMatrix(0, 2, L"More");
        for (int32_t r = 1; r < 4; ++r) {
            grid.TextMatrix(r, 0, std::to_wstring(r - 1));
            grid.TextMatrix(r, 1, L"row " + std::to_wstring(r));
        }
        tabs.AddTab(L"Binary Text");
        tabs.AddTab(L"Numeric");
        tabs.AddTab(L"Stream");
        Show();
    }
    Grid grid{L"grid"};
    TabStrip tabs{L"tabs"};
    IPAddressControl ip{L"ip"};
};

class GridTabIPBindingTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    Controls form;
    QWidget window;
    QTableView* grid = new QTableView(&window);
    QTabBar* tabs = new QTabBar(&window);
    QLineEdit* ip = new QLineEdit(&window);
    std::unique_ptr<ControlBinding> gridBinding, tabBinding, ipBinding;

    void SetUp() override {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(tabs);
        layout->addWidget(grid);
        layout->addWidget(ip);
        window.resize(400, 300);
        gridBinding = ControlBinding::bind(form.grid, *grid);
        tabBinding = ControlBinding::bind(form.tabs, *tabs);
        ipBinding = ControlBinding::bind(form.ip, *ip);
        window.show();
        ASSERT_TRUE(gridBinding && tabBinding && ipBinding);
    }
    QPoint centreOf(int row, int col) { return grid->visualRect(grid->model()->index(row - 1, col)).center(); }
};

TEST_F(GridTabIPBindingTest, TheGridShowsItsHeaderRowAndItsCells) {
    EXPECT_EQ(grid->model()->rowCount(), 3);
    EXPECT_EQ(grid->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Text"));
    EXPECT_EQ(grid->model()->index(1, 1).data().toString(), QStringLiteral("row 2"));
    form.grid.TextMatrix(2, 2, L"changed");
    EXPECT_EQ(grid->model()->index(1, 2).data().toString(), QStringLiteral("changed"));
    form.grid.AddItem(L"3\trow 4");
    EXPECT_EQ(grid->model()->rowCount(), 4);
    // Cells of the fixed column take no selection.
    EXPECT_FALSE(grid->model()->flags(grid->model()->index(0, 0)) & Qt::ItemIsSelectable);
}

TEST_F(GridTabIPBindingTest, AClickAndTheArrowKeysMoveTheModelsCurrentCell) {
    int clicks = 0;
    form.grid.OnClick = [&] { ++clicks; };
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, centreOf(3, 2));
    EXPECT_EQ(form.grid.Row(), 3);
    EXPECT_EQ(form.grid.Col(), 2);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(2, 2));
    QTest::keyClick(grid, Qt::Key_Up);
    QTest::keyClick(grid, Qt::Key_Left);
    EXPECT_EQ(form.grid.Row(), 2);
    EXPECT_EQ(form.grid.Col(), 1);
    EXPECT_EQ(clicks, 1);
    // Nothing moves into the fixed column.
    QTest::keyClick(grid, Qt::Key_Left);
    EXPECT_EQ(form.grid.Col(), 1);
}

TEST_F(GridTabIPBindingTest, TheCellEditorOpensWhenTheGridEditsAndTakesItsLimit) {
    form.grid.Editable(true);
    form.grid.EditMaxLength(5);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, centreOf(1, 1));
    ASSERT_TRUE(form.grid.IsEditing());
    auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("abcdefgh"));
    EXPECT_EQ(form.grid.EditText(), L"abcde");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_FALSE(form.grid.IsEditing());
    EXPECT_EQ(form.grid.TextMatrix(1, 1), L"abcde");
    EXPECT_EQ(grid->model()->index(0, 1).data().toString(), QStringLiteral("abcde"));
}

TEST_F(GridTabIPBindingTest, KeysOnTheTableWhileItsEditorIsOpenGoToTheEditor) {
    form.grid.EditMaxLength(10);
    form.grid.EditCell();
    grid->setFocus();
    QTest::keyClicks(grid, QStringLiteral("abc"));
    // The editor opens with its text selected: the first key replaces it, the others follow.
    EXPECT_TRUE(form.grid.IsEditing());
    EXPECT_EQ(form.grid.EditText(), L"abc");
}

TEST_F(GridTabIPBindingTest, EscapeInTheCellEditorLeavesTheCell) {
    form.grid.EditCell();
    auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("x"));
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_FALSE(form.grid.IsEditing());
    EXPECT_EQ(form.grid.TextMatrix(1, 1), L"row 1");
}

TEST_F(GridTabIPBindingTest, TheEllipsisButtonOfTheCurrentCellIsTheModelsCellButton) {
    std::vector<std::pair<int32_t, int32_t>> pressed;
    form.grid.OnCellButtonClick = [&](int32_t r, int32_t c) { pressed.emplace_back(r, c); };
    form.grid.ComboList(Grid::EllipsisButton);
    form.grid.Select(2, 1);
    const QRect cell = grid->visualRect(grid->model()->index(1, 1));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 4, cell.center().y()));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 4, cell.center().y()));
    EXPECT_EQ(pressed, (std::vector<std::pair<int32_t, int32_t>>{{2, 1}}));
}

TEST_F(GridTabIPBindingTest, TheTabStripShowsItsTabsAndAClickIsTheModelsSelect) {
    std::vector<int32_t> clicks;
    form.tabs.OnClick = [&](int32_t tab) { clicks.push_back(tab); };
    ASSERT_EQ(tabs->count(), 3);
    EXPECT_EQ(tabs->tabText(2), QStringLiteral("Stream"));
    form.tabs.TabVisible(1, false);
    EXPECT_FALSE(tabs->isTabVisible(0));
    form.tabs.SelectedTab(3);
    EXPECT_EQ(tabs->currentIndex(), 2);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    EXPECT_EQ(form.tabs.SelectedTab(), 2);
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_EQ(clicks, (std::vector<int32_t>{3, 2}));
}

TEST_F(GridTabIPBindingTest, TheIPEntryTakesDigitsAndDotsOnly) {
    int changes = 0;
    form.ip.OnChange = [&] { ++changes; };
    ip->setFocus();
    QTest::keyClicks(ip, QStringLiteral("10a.0.0.1"));
    EXPECT_EQ(form.ip.Text(), L"10.0.0.1");
    EXPECT_TRUE(form.ip.IsValid());
    EXPECT_GT(changes, 0);
    form.ip.Text(L"192.168.0.1");
    EXPECT_EQ(ip->text(), QStringLiteral("192.168.0.1"));
}

// A grid as the message editors use it: no header row, one narrow cell per
// position, a drop-down list on column 1, keys and mouse as the dialog hears them.
class MessageGridForm : public Form {
public:
    MessageGridForm() : Form(L"MessageGridForm") {
        addControls({&FlgScan});
        FlgScan.FixedRows(0);
        FlgScan.Rows(4);
        FlgScan.Cols(12);
        FlgScan.ColWidth(0, 345);
        FlgScan.ColWidth(1, 795);
        for (int32_t c = 2; c < 12; ++c) {
            FlgScan.ColWidth(c, 300);
            FlgScan.ColAlignment(c, Grid::AlignCenterCenter);
        }
        FlgScan.ColComboList(1, L"0|1|2|3|4|5|");
        for (int32_t r = 0; r < 4; ++r) {
            FlgScan.TextMatrix(r, 0, std::to_wstring(r));
            FlgScan.TextMatrix(r, 1, L"0");
        }
        Show();
    }
    Grid FlgScan{L"FlgScan"};
};

class MessageGridBindingTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    MessageGridForm form;
    QWidget window;
    QTableView* grid = new QTableView(&window);
    std::unique_ptr<ControlBinding> binding;
    std::vector<std::string> events;

    void SetUp() override {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(grid);
        window.resize(600, 200);
        binding = ControlBinding::bind(form.FlgScan, *grid);
        ASSERT_NE(binding, nullptr);
        window.show();
        grid->setFocus();
    }
    void TearDown() override {
        if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    }
    QModelIndex at(int32_t row, int32_t col) const { return grid->model()->index(row, col); }
    QPoint centreOf(int32_t row, int32_t col) const { return grid->visualRect(at(row, col)).center(); }
};

TEST_F(MessageGridBindingTest, AGridWithoutFixedRowsShowsNoHeaderRowAndAllItsRows) {
    EXPECT_FALSE(grid->horizontalHeader()->isVisible());
    EXPECT_EQ(grid->model()->rowCount(), 4);
    EXPECT_EQ(at(0, 0).data().toString(), QStringLiteral("0"));
    EXPECT_EQ(grid->columnWidth(1), 53);
    EXPECT_EQ(grid->columnWidth(2), 20);
}

TEST_F(MessageGridBindingTest, TheNumberColumnShowsAgainWhenTheCaretComesBackToTheStart) {
    form.FlgScan.Cols(502);
    for (int32_t c = 2; c < 502; ++c) form.FlgScan.ColWidth(c, 300);
    QApplication::processEvents();
    // End takes the caret to the last column, far to the right: the view
    // scrolls there and the number column is out of sight.
    QTest::keyClick(grid, Qt::Key_End);
    EXPECT_EQ(form.FlgScan.Col(), 501);
    EXPECT_LT(grid->columnViewportPosition(0), 0);
    // Back on a column that fits beside it, the number column shows again.
    form.FlgScan.Col(2);
    EXPECT_EQ(grid->columnViewportPosition(0), 0);
    EXPECT_GE(grid->columnViewportPosition(2), grid->columnWidth(0));
    // Far right, the caret's cell stays what the view shows.
    form.FlgScan.Col(400);
    const int x = grid->columnViewportPosition(400);
    EXPECT_GE(x, 0);
    EXPECT_LE(x + grid->columnWidth(400), grid->viewport()->width());
}

TEST_F(MessageGridBindingTest, AColumnsAlignmentAlignsItsCells) {
    EXPECT_EQ(at(1, 2).data(Qt::TextAlignmentRole).value<Qt::Alignment>(), Qt::AlignHCenter | Qt::AlignVCenter);
    EXPECT_FALSE(at(1, 1).data(Qt::TextAlignmentRole).isValid());
}

TEST_F(MessageGridBindingTest, ACellChangeAsksTheViewForItsRowOnly) {
    QSignalSpy changed(grid->model(), &QAbstractItemModel::dataChanged);
    form.FlgScan.TextMatrix(2, 5, L"A");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].value<QModelIndex>(), at(2, 0));
    EXPECT_EQ(changed[0][1].value<QModelIndex>(), at(2, 11));
    EXPECT_EQ(at(2, 5).data().toString(), QStringLiteral("A"));
}

TEST_F(MessageGridBindingTest, ARowIsAnnouncedOnceUntilTheViewPaintsIt) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QApplication::processEvents();
    QSignalSpy changed(grid->model(), &QAbstractItemModel::dataChanged);
    form.FlgScan.TextMatrix(2, 5, L"A");
    form.FlgScan.TextMatrix(2, 6, L"B");
    form.FlgScan.CellBackColor(2, 7, 255);
    ASSERT_EQ(changed.count(), 1);
    form.FlgScan.TextMatrix(3, 5, L"C");
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed[1][0].value<QModelIndex>(), at(3, 0));
    grid->viewport()->repaint();
    form.FlgScan.TextMatrix(3, 6, L"D");
    ASSERT_EQ(changed.count(), 3);
    EXPECT_EQ(changed[2][0].value<QModelIndex>(), at(3, 0));
    EXPECT_EQ(changed[2][1].value<QModelIndex>(), at(3, 11));
    EXPECT_EQ(at(2, 6).data().toString(), QStringLiteral("B"));
    EXPECT_EQ(at(3, 6).data().toString(), QStringLiteral("D"));
}

TEST_F(MessageGridBindingTest, WhileRedrawIsOffTheViewKeepsItsShapeAndCatchesUpWhenItIsOn) {
    form.FlgScan.Redraw(false);
    EXPECT_FALSE(grid->updatesEnabled());
    form.FlgScan.Rows(9);
    form.FlgScan.TextMatrix(8, 3, L"Z");
    EXPECT_EQ(grid->model()->rowCount(), 4);
    form.FlgScan.Redraw(true);
    EXPECT_TRUE(grid->updatesEnabled());
    EXPECT_EQ(grid->model()->rowCount(), 9);
    EXPECT_EQ(at(8, 3).data().toString(), QStringLiteral("Z"));
}

TEST_F(MessageGridBindingTest, NavigationKeysGoDownAsKeyDownAndTheGridMovesUnlessSwallowed) {
    form.FlgScan.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) {
        events.push_back("KeyDown " + std::to_string(KeyCode) + " " + std::to_string(Shift));
        if (KeyCode == keys::Home) {
            form.FlgScan.Col(2);
            KeyCode = 0;
        }
    };
    form.FlgScan.Select(1, 6);
    QTest::keyClick(grid, Qt::Key_End);
    EXPECT_EQ(form.FlgScan.Col(), 11);
    QTest::keyClick(grid, Qt::Key_Home);
    EXPECT_EQ(form.FlgScan.Col(), 2);
    QTest::keyClick(grid, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(form.FlgScan.Row(), 2);
    QTest::keyClick(grid, Qt::Key_Delete);
    EXPECT_EQ(events, (std::vector<std::string>{"KeyDown 35 0", "KeyDown 36 0", "KeyDown 40 1", "KeyDown 46 0"}));
    EXPECT_EQ(grid->currentIndex(), at(2, 2));
}

TEST_F(MessageGridBindingTest, CharactersAndBackspaceAreKeyPressOnAGridThatIsNotEditable) {
    std::vector<int32_t> pressed;
    form.FlgScan.OnKeyPress = [&](int32_t& KeyAscii) { pressed.push_back(KeyAscii); };
    QTest::keyClicks(grid, QStringLiteral("a1"));
    QTest::keyClick(grid, Qt::Key_Backspace);
    EXPECT_EQ(pressed, (std::vector<int32_t>{'a', '1', 8}));
    EXPECT_FALSE(form.FlgScan.IsEditing());
}

TEST_F(MessageGridBindingTest, TheRightButtonIsMouseUpWithButton2OverItsCellAndMovesNothing) {
    form.FlgScan.OnMouseUp = [this](int32_t Button, int32_t, float, float) {
        events.push_back("MouseUp " + std::to_string(Button) + " " + std::to_string(form.FlgScan.MouseRow()) + "," +
                         std::to_string(form.FlgScan.MouseCol()));
    };
    form.FlgScan.OnClick = [this] { events.push_back("Click"); };
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, centreOf(3, 7));
    EXPECT_EQ(events, (std::vector<std::string>{"MouseUp 2 3,7"}));
    EXPECT_EQ(form.FlgScan.Row(), 0);
    EXPECT_EQ(form.FlgScan.Col(), 1);
}

TEST_F(MessageGridBindingTest, TheMouseOverACellIsTheGridsMouseCellAndItsTooltipIsTheGrids) {
    form.FlgScan.OnMouseMove = [this](int32_t, int32_t, float, float) {
        form.FlgScan.ToolTipText(
            form.FlgScan.MouseCol() >= 2 ? L"Index: " + std::to_wstring(form.FlgScan.MouseCol() - 2) : L"");
    };
    QTest::mouseMove(grid->viewport(), centreOf(2, 4));
    QApplication::processEvents();
    EXPECT_EQ(form.FlgScan.MouseRow(), 2);
    EXPECT_EQ(form.FlgScan.MouseCol(), 4);
    EXPECT_EQ(form.FlgScan.ToolTipText(), L"Index: 2");
    EXPECT_EQ(at(2, 4).data(Qt::ToolTipRole).toString(), QStringLiteral("Index: 2"));
}

TEST_F(MessageGridBindingTest, TheDropDownButtonOfAnEditableListCellOpensTheList) {
    form.FlgScan.Editable(true);
    form.FlgScan.Select(1, 1);
    const QRect cell = grid->visualRect(at(1, 1));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 4, cell.center().y()));
    EXPECT_TRUE(form.FlgScan.IsEditing());
    auto* list = grid->findChild<QComboBox*>(QStringLiteral("qt_grid_cell_list"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->count(), 6);
    EXPECT_EQ(list->currentText(), QStringLiteral("0"));
}

TEST_F(MessageGridBindingTest, PickingFromTheListIsTheModelsPickAndEndsTheEdit) {
    std::vector<std::wstring> picked;
    form.FlgScan.OnAfterEdit = [&](int32_t, int32_t) { picked.push_back(form.FlgScan.EditText()); };
    form.FlgScan.Editable(true);
    form.FlgScan.Select(2, 1);
    form.FlgScan.UserDropDown();
    auto* list = grid->findChild<QComboBox*>(QStringLiteral("qt_grid_cell_list"));
    ASSERT_NE(list, nullptr);
    emit list->activated(4);
    QApplication::processEvents();
    EXPECT_EQ(picked, (std::vector<std::wstring>{L"4"}));
    EXPECT_FALSE(form.FlgScan.IsEditing());
    EXPECT_EQ(at(2, 1).data().toString(), QStringLiteral("4"));
}

TEST_F(MessageGridBindingTest, TheCaretOfTheGridsWindowIsPaintedAtTheLeftOfItsCell) {
    const QRect cell = grid->visualRect(at(1, 3));
    const QColor background = grid->viewport()->grab().toImage().pixelColor(cell.left() + 1, cell.top() + 2);
    // Column 3 starts at 345 + 795 + 300 twips: 96 pixels at 96 dots per inch.
    CreateCaret(form.FlgScan.hWnd(), 0, 4, 20);
    SetCaretPos(96, 20);
    ShowCaret(form.FlgScan.hWnd());
    QApplication::processEvents();
    const QImage shown = grid->viewport()->grab().toImage();
    EXPECT_NE(shown.pixelColor(cell.left() + 1, cell.top() + 2), background);
    EXPECT_EQ(shown.pixelColor(cell.left() + 8, cell.top() + 2), background);
    CreateCaret(12345, 0, 4, 20);  // another window's caret
    QApplication::processEvents();
    EXPECT_EQ(grid->viewport()->grab().toImage().pixelColor(cell.left() + 1, cell.top() + 2), background);
}

}  // namespace
}  // namespace qx
