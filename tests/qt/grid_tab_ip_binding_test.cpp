// The grid, the tab strip and the IP entry on screen: what the model holds
// is shown, and mouse and keys reach the model's User* actions.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QLineEdit>
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

}  // namespace
}  // namespace qx
