// The toolbar on screen: its docked band as a QToolBar with the label and the
// list in it, its popup bands as menus where the model opens them; clicks,
// picks and a dismissed menu reach the model's User* actions.
#include "qt/toolbar_binding.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>

#include "platform/controls/combo_box.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"
#include "platform/host/host_context.h"
#include "qt/control_binding.h"

namespace qx {
namespace {

class Bar : public Form {
public:
    Bar() : Form(L"Bar") {
        addControls({&abSend, &cbInstanceName, &FlgSend});
        ToolBand& main = abSend.AddBand(L"MainToolBar", ToolBand::Kind::Docked);
        main.AddLabel(L"lblSelectName", L"Select Name : ");
        main.AddControl(L"cbInstanceName", cbInstanceName);
        main.AddTool(L"ID_Cut", L"Cut message");
        main.AddTool(L"ID_Copy", L"Copy message");
        main.AddTool(L"ID_Paste", L"Paste message");
        main.AddTool(L"ID_ClearAll", L"Clear All Messages", L"Clear All");
        ToolBand& onVar = abSend.AddBand(L"popOnVar", ToolBand::Kind::Popup);
        onVar.AddTool(L"ID_EditVar", L"Properties...");
        onVar.AddTool(L"ID_DeleteVar", L"Delete Var");
        cbInstanceName.AddItem(L"Config1", 4);
        FlgSend.FixedRows(0);
        FlgSend.Cols(20);
        FlgSend.Rows(3);
        for (int32_t c = 0; c < 20; ++c) FlgSend.ColWidth(c, 300);
        Show();
    }
    ToolBar abSend{L"abSend"};
    ComboBox cbInstanceName{L"cbInstanceName"};
    Grid FlgSend{L"FlgSend"};
};

class ToolBarBindingTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    Bar form;
    QWidget window;
    QToolBar* toolbar = new QToolBar(&window);
    QComboBox* list = new QComboBox(&window);
    QTableView* grid = new QTableView(&window);
    std::vector<std::unique_ptr<ControlBinding>> bindings;
    std::vector<std::wstring> clicked;

    void SetUp() override {
        toolbar->setObjectName(QStringLiteral("abSend"));
        list->setObjectName(QStringLiteral("cbInstanceName"));
        grid->setObjectName(QStringLiteral("FlgSend"));
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(toolbar);
        layout->addWidget(list);
        layout->addWidget(grid);
        window.resize(700, 300);
        bindings.push_back(ControlBinding::bind(form.cbInstanceName, *list));
        bindings.push_back(ControlBinding::bind(form.abSend, *toolbar));
        bindings.push_back(ControlBinding::bind(form.FlgSend, *grid));
        for (const auto& binding : bindings) ASSERT_NE(binding, nullptr);
        form.abSend.OnToolClick = [this](const std::wstring& ToolId) { clicked.push_back(ToolId); };
        window.show();
    }
    void TearDown() override {
        if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    }

    QAction* actionOf(const QString& id) const {
        for (QAction* action : toolbar->actions())
            if (action->objectName() == id) return action;
        return nullptr;
    }
};

TEST_F(ToolBarBindingTest, TheDockedBandShowsItsLabelItsListAndItsButtonsInOrder) {
    const QList<QAction*> actions = toolbar->actions();
    ASSERT_EQ(actions.size(), 6);
    auto* label = qobject_cast<QLabel*>(toolbar->widgetForAction(actions[0]));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("Select Name : "));
    EXPECT_EQ(toolbar->widgetForAction(actions[1]), list);
    EXPECT_EQ(list->parentWidget(), toolbar);
    EXPECT_EQ(actions[2]->text(), QStringLiteral("Cut message"));
    EXPECT_EQ(actions[5]->toolTip(), QStringLiteral("Clear All"));
    EXPECT_EQ(actions[3]->toolTip(), QStringLiteral("Copy message"));
    // The list is still the model's list.
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(list->itemText(0), QStringLiteral("Config1"));
}

TEST_F(ToolBarBindingTest, ToolsWithoutIconsShowTheirCaptionsAndWithIconsTheIconsAlone) {
    EXPECT_EQ(toolbar->toolButtonStyle(), Qt::ToolButtonTextOnly);
    // Icons by their freedesktop names, from the desktop's theme or, offscreen, from Adwaita.
    const std::pair<const wchar_t*, const wchar_t*> icons[] = {
        {L"ID_Cut", L"edit-cut"}, {L"ID_Copy", L"edit-copy"}, {L"ID_Paste", L"edit-paste"}, {L"ID_ClearAll", L"edit-delete"}};
    for (const auto& [id, icon] : icons) form.abSend.Bands(L"MainToolBar").Tools(id).Icon(icon);
    for (const auto& [id, icon] : icons) EXPECT_FALSE(actionOf(QString::fromWCharArray(id))->icon().isNull()) << icon;
    EXPECT_EQ(toolbar->toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_EQ(actionOf(QStringLiteral("ID_Cut"))->toolTip(), QStringLiteral("Cut message"));
}

TEST_F(ToolBarBindingTest, AClickOnAButtonIsTheModelsToolClick) {
    auto* button = qobject_cast<QToolButton*>(toolbar->widgetForAction(actionOf(QStringLiteral("ID_Copy"))));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_Copy"}));
}

TEST_F(ToolBarBindingTest, WhatTheModelChangesOfAToolChangesOnScreen) {
    form.abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(false);
    EXPECT_FALSE(actionOf(QStringLiteral("ID_Paste"))->isEnabled());
    form.abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(true);
    EXPECT_TRUE(actionOf(QStringLiteral("ID_Paste"))->isEnabled());
    form.abSend.Bands(L"MainToolBar").Tools(L"ID_Cut").Caption(L"Cut");
    EXPECT_EQ(actionOf(QStringLiteral("ID_Cut"))->text(), QStringLiteral("Cut"));
}

TEST_F(ToolBarBindingTest, AToolAddedLaterTakesItsPlaceAndTheListStays) {
    form.abSend.Bands(L"MainToolBar").AddTool(L"ID_AppendMsg", L"Append message");
    ASSERT_NE(actionOf(QStringLiteral("ID_AppendMsg")), nullptr);
    EXPECT_EQ(toolbar->actions().size(), 7);
    EXPECT_EQ(toolbar->widgetForAction(toolbar->actions()[1]), list);
    QApplication::processEvents();
    EXPECT_TRUE(list->isVisible());
}

TEST_F(ToolBarBindingTest, APopupOpensAsAMenuOverTheCellTheModelNamed) {
    form.abSend.Bands(L"popOnVar").PopupMenu(form.FlgSend, 600, 300);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("popOnVar"));
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Properties..."));
    EXPECT_EQ(menu->pos(), grid->viewport()->mapToGlobal(QPoint(40, 20)));
    EXPECT_EQ(popupPoint(*grid, 600, 300), grid->viewport()->mapToGlobal(QPoint(40, 20)));
}

TEST_F(ToolBarBindingTest, PickingAMenuItemIsTheModelsPickAndClosesThePopup) {
    form.abSend.Bands(L"popOnVar").PopupMenu(form.FlgSend, 0, 0);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QTest::qWait(20);
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_DeleteVar"}));
    EXPECT_EQ(form.abSend.OpenPopup(), nullptr);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(ToolBarBindingTest, EscapeOnTheMenuDismissesThePopup) {
    form.abSend.Bands(L"popOnVar").PopupMenu();
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Escape);
    QTest::qWait(20);
    EXPECT_EQ(form.abSend.OpenPopup(), nullptr);
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarBindingTest, APopupClosedByTheModelClosesItsMenu) {
    form.abSend.Bands(L"popOnVar").PopupMenu();
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    form.abSend.UserDismissPopup();
    QTest::qWait(20);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarBindingTest, AHandlerThatOpensTheNextPopupKeepsItOpen) {
    form.abSend.OnToolClick = [this](const std::wstring& ToolId) {
        clicked.push_back(ToolId);
        if (ToolId == L"ID_EditVar") form.abSend.Bands(L"popOnVar").PopupMenu(form.FlgSend, 300, 0);
    };
    form.abSend.Bands(L"popOnVar").PopupMenu(form.FlgSend, 0, 0);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QTest::qWait(20);
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_EditVar"}));
    ASSERT_NE(form.abSend.OpenPopup(), nullptr);
    EXPECT_EQ(form.abSend.OpenPopup()->X, 300);
}

}  // namespace
}  // namespace qx
