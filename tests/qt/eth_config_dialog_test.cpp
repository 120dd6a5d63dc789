// The TCP/IP Config dialog and its address dialog on screen, driven by real
// key and mouse events through the Qt modal driver, against the same edit
// made headless.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <string>

#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "tcpip/eth_config_bench.h"

namespace qx {
namespace {

using testing_eth::EthConfigBench;

// The centre of a grid cell (row and column as the grid counts them) and of its ellipsis button.
QPoint cellCentre(QTableView& view, int row, int col) {
    return view.visualRect(view.model()->index(row - 1, col)).center();
}
QPoint ellipsisOf(QTableView& view, int row, int col) {
    const QRect cell = view.visualRect(view.model()->index(row - 1, col));
    return QPoint(cell.right() - 6, cell.center().y());
}

// Chooses entry `steps` down the constant list of the picker and presses OK.
void pickFromConstantList(QWidget& picker, int steps) {
    auto* list = picker.findChild<QComboBox*>(QStringLiteral("cbConstantList"));
    auto* buttons = picker.findChild<QDialogButtonBox*>(QStringLiteral("buttons"));
    ASSERT_TRUE(list && buttons);
    for (int i = 0; i < steps; ++i) QTest::keyClick(list, Qt::Key_Down);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
}

// The address table of an instance: port 20000 and "Address i" everywhere.
Bytes defaultTable() {
    Bytes table{100, 16};
    for (int i = 0; i < 16; ++i) {
        Bytes row{0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0x20, 0x4E, 0, 0};
        std::string text = "Address " + std::to_string(i);
        text.resize(12, ' ');
        row.insert(row.end(), text.begin(), text.end());
        table.insert(table.end(), row.begin(), row.end());
    }
    return table;
}

class QtEthConfigDialogTest : public ::testing::Test {
protected:
    EthConfigBench bench;
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    Bytes instanceData(const EthConfigBench& of) {
        Bytes data;
        of.instances->GetInstanceData(of.config->itfFBMethod_FatherInstanceNum(), data);
        return data;
    }
};

TEST_F(QtEthConfigDialogTest, EveryControlOfBothDialogsHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmEthProtocolConfig config;
    frmEthAddressParam address;
    for (Form* form : {static_cast<Form*>(&config), static_cast<Form*>(&address)}) {
        std::unique_ptr<FormDialog> view = createFormView(*form);
        ASSERT_NE(view, nullptr);
        FormBinding binding(*form, *view);
        for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
        EXPECT_TRUE(binding.ControlsWithoutWidget().empty());
        for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    }
}

TEST_F(QtEthConfigDialogTest, ANewConfigMadeWithKeysAndMouseEqualsTheOneMadeHeadless) {
    bench.makeNew();
    bool okWithPort0 = true, okWithPort32768 = true, okWithPort502 = false;
    QString ipCell, portCell, descriptionCell;
    test::onModal(QStringLiteral("OperandPicker"), [&](QWidget& picker) {
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& second) { test::pickWithKeys(second, 3, 100); });
        pickFromConstantList(picker, 1);
    });
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(name, QStringLiteral("Plant"));

        // The IP of address 0, typed into the IP entry.
        test::onModal(QStringLiteral("frmEthAddressParam"), [](QWidget& dialog) {
            QApplication::setActiveWindow(&dialog);
            auto* ip = dialog.findChild<QLineEdit*>(QStringLiteral("ctlIPAddress"));
            ip->setFocus(Qt::TabFocusReason);
            QTest::keyClicks(ip, QStringLiteral("192.168.1.10"));
            test::saveScreenshot(dialog, QStringLiteral("eth_address_dialog.png"));
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
        });
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 1));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, ellipsisOf(*grid, 1, 1));

        // The port of address 1: 0 and 32768 are refused, 502 taken.
        test::onModal(QStringLiteral("frmEthAddressParam"), [&](QWidget& dialog) {
            QApplication::setActiveWindow(&dialog);
            auto* port = dialog.findChild<QLineEdit*>(QStringLiteral("txtConstValueEx"));
            auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"));
            port->setFocus(Qt::TabFocusReason);
            QTest::keyClick(port, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(port, QStringLiteral("0"));
            okWithPort0 = ok->isEnabled();
            QTest::keyClick(port, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(port, QStringLiteral("32768"));
            okWithPort32768 = ok->isEnabled();
            QTest::keyClick(port, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(port, QStringLiteral("502"));
            okWithPort502 = ok->isEnabled();
            QTest::mouseClick(ok, Qt::LeftButton);
        });
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 2, 2));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, ellipsisOf(*grid, 2, 2));

        // A description longer than twelve characters is stopped by the cell editor.
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 3));
        auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
        EXPECT_NE(editor, nullptr);
        if (editor) {
            QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(editor, QStringLiteral("Boiler house north"));
            QTest::keyClick(editor, Qt::Key_Return);
        }
        ipCell = grid->model()->index(0, 1).data().toString();
        portCell = grid->model()->index(1, 2).data().toString();
        descriptionCell = grid->model()->index(0, 3).data().toString();
        test::saveScreenshot(window, QStringLiteral("eth_config_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();

    EXPECT_FALSE(okWithPort0);
    EXPECT_FALSE(okWithPort32768);
    EXPECT_TRUE(okWithPort502);
    EXPECT_EQ(ipCell, QStringLiteral("192.168.1.10"));
    EXPECT_EQ(portCell, QStringLiteral("502"));
    EXPECT_EQ(descriptionCell, QStringLiteral("Boiler house"));
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());

    EthConfigBench headless;
    headless.placeNew(1, 100);
    headless.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Plant");
        dialog.vsfSlaves.UserClick(1, 1);
        dialog.vsfSlaves.UserCellButtonClick();
        dialog.vsfSlaves.UserClick(2, 2);
        dialog.vsfSlaves.UserCellButtonClick();
        dialog.vsfSlaves.UserClick(1, 3);
        dialog.vsfSlaves.UserType(L"Boiler house north");
        dialog.vsfSlaves.UserEndEdit();
        dialog.cmdOK.UserClick();
    });
    headless.onAddressDialog([](frmEthAddressParam& dialog) {
        dialog.ctlIPAddress.UserType(L"192.168.1.10");
        dialog.cmdOK.UserClick();
    });
    headless.onAddressDialog([](frmEthAddressParam& dialog) {
        dialog.txtConstValueEx.UserType(L"502");
        dialog.cmdOK.UserClick();
    });
    headless.config->itfFBMethod_EditOperands();

    EXPECT_EQ(instanceData(bench), instanceData(headless));
    EXPECT_EQ(instanceData(bench).size(), 418u);
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Plant");
    EXPECT_EQ(bench.config->itfFBMethod_InOperands()->Item(1)->OperandConstantValue(), 10000);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 100);
}

TEST_F(QtEthConfigDialogTest, ClearLinkWithTheMouseEmptiesTheRow) {
    bench.reopen(L"Plant", defaultTable());
    bool enabledBefore = true, enabledOnRow = false;
    QStringList cells;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        auto* clear = window.findChild<QPushButton*>(QStringLiteral("cmdClearLink"));
        enabledBefore = clear->isEnabled();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 3, 2));
        enabledOnRow = clear->isEnabled();
        QTest::mouseClick(clear, Qt::LeftButton);
        for (int c = 0; c < 4; ++c) cells << grid->model()->index(2, c).data().toString();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_FALSE(enabledBefore);
    EXPECT_TRUE(enabledOnRow);
    EXPECT_EQ(cells, (QStringList{QStringLiteral("2"), QString(), QString(), QString()}));
    Bytes data = instanceData(bench);
    ASSERT_EQ(data.size(), 418u);
    // Record 2: nothing used, port 0, blank description.
    Bytes expected{0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0};
    expected.resize(26, ' ');
    EXPECT_EQ(Bytes(data.begin() + 2 + 2 * 26, data.begin() + 2 + 3 * 26), expected);
}

TEST_F(QtEthConfigDialogTest, AClickIntoTheNameBoxSelectsTheWholeNameAndASecondClickPlacesTheCaret) {
    bench.reopen(L"Plant", defaultTable());
    QString selectedByFocus, selectedBySecondClick = QStringLiteral("?");
    int32_t modelStart = -1, modelLength = -1;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto& form = static_cast<frmEthProtocolConfig&>(static_cast<FormDialog&>(window).BoundForm());
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 2, 1));
        ASSERT_FALSE(name->hasFocus());
        // The click lands after the last letter, where a caret would go.
        const QPoint end(name->width() - 4, name->height() / 2);
        QTest::mouseClick(name, Qt::LeftButton, {}, end);
        selectedByFocus = name->selectedText();
        modelStart = form.txtInstanceName.SelStart();
        modelLength = form.txtInstanceName.SelLength();
        QTest::mouseClick(name, Qt::LeftButton, {}, end);
        selectedBySecondClick = name->selectedText();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(selectedByFocus, QStringLiteral("Plant"));
    EXPECT_EQ(modelStart, 0);
    EXPECT_EQ(modelLength, 5);
    EXPECT_EQ(selectedBySecondClick, QString());
}

TEST_F(QtEthConfigDialogTest, KeysTypedAfterAClickIntoTheNameBoxReplaceTheWholeName) {
    bench.reopen(L"Plant", defaultTable());
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 2, 1));
        QTest::mouseClick(name, Qt::LeftButton, {}, QPoint(4, name->height() / 2));
        QTest::keyClicks(name, QStringLiteral("Mill"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Mill");
}

TEST_F(QtEthConfigDialogTest, ADescriptionTypedWithoutEnterIsStoredByAClickOnOK) {
    const int32_t number = bench.reopen(L"Plant", defaultTable());
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 3));
        auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
        ASSERT_NE(editor, nullptr);
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("Pump"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());
    Bytes data;
    bench.instances->GetInstanceData(number, data);
    ASSERT_EQ(data.size(), 418u);
    EXPECT_EQ(std::string(data.begin() + 2 + 14, data.begin() + 2 + 26), "Pump        ");
}

TEST_F(QtEthConfigDialogTest, CancelOfANewConfigDeletesItsInstance) {
    bench.makeNew();
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [](QWidget& window) {
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.instances->Count(), 0u);
    EXPECT_EQ(bench.instances->Deleted.size(), 1u);
}

// --- Escape and Enter, and the line that explains a disabled OK ---

// The line under the fields, and whether it shows.
QString problemShown(QWidget& window) {
    auto* line = window.findChild<QLabel*>(QStringLiteral("inputProblem"));
    return line ? line->text() : QStringLiteral("(no line)");
}

TEST_F(QtEthConfigDialogTest, EscapeInTheNameBoxCancelsAndKeepsTheInstance) {
    const int32_t number = bench.reopen(L"Plant", defaultTable());
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(name, QStringLiteral("Mill"));
        QTest::keyClick(name, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    std::wstring name;
    bench.instances->GetInstanceName(number, name);
    EXPECT_EQ(name, L"Plant");
    EXPECT_EQ(instanceData(bench), defaultTable());
}

TEST_F(QtEthConfigDialogTest, EscapeOfANewConfigDeletesItsInstanceAsCancelDoes) {
    bench.makeNew();
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        QTest::keyClick(&window, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.instances->Count(), 0u);
    EXPECT_EQ(bench.instances->Deleted.size(), 1u);
}

TEST_F(QtEthConfigDialogTest, EscapeInTheCellEditorDropsTheEditAndASecondEscapeCancels) {
    bench.reopen(L"Plant", defaultTable());
    bool shownAfterFirst = false;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 3));
        auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
        ASSERT_NE(editor, nullptr);
        QTest::keyClicks(editor, QStringLiteral("Pump"));
        QTest::keyClick(editor, Qt::Key_Escape);
        shownAfterFirst = window.isVisible();
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(shownAfterFirst);
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(instanceData(bench), defaultTable());
}

TEST_F(QtEthConfigDialogTest, EnterInTheNameBoxAcceptsAsOKDoes) {
    const int32_t number = bench.reopen(L"Plant", defaultTable());
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(name, QStringLiteral("Mill"));
        QTest::keyClick(name, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());
    std::wstring name;
    bench.instances->GetInstanceName(number, name);
    EXPECT_EQ(name, L"Mill");
    EXPECT_EQ(instanceData(bench), defaultTable());
}

TEST_F(QtEthConfigDialogTest, EnterInTheCellEditorEndsTheEditAndASecondEnterAccepts) {
    const int32_t number = bench.reopen(L"Plant", defaultTable());
    bool shownAfterFirst = false;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 3));
        auto* editor = grid->findChild<QLineEdit*>(QStringLiteral("qt_grid_cell_editor"));
        ASSERT_NE(editor, nullptr);
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("Pump"));
        QTest::keyClick(editor, Qt::Key_Return);
        shownAfterFirst = window.isVisible();
        QTest::keyClick(grid, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(shownAfterFirst);
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());
    Bytes data;
    bench.instances->GetInstanceData(number, data);
    ASSERT_EQ(data.size(), 418u);
    EXPECT_EQ(std::string(data.begin() + 2 + 14, data.begin() + 2 + 26), "Pump        ");
}

TEST_F(QtEthConfigDialogTest, ABlankNameIsExplainedUnderTheFieldsAndEnterDoesNothingUntilMended) {
    bench.reopen(L"Plant", defaultTable());
    QString good = QStringLiteral("?"), blank, tip, mended = QStringLiteral("?");
    bool shownAfterEnter = false;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        good = problemShown(window);
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClick(name, Qt::Key_Backspace);
        blank = problemShown(window);
        tip = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->toolTip();
        QTest::keyClick(name, Qt::Key_Return);
        shownAfterEnter = window.isVisible();
        QTest::keyClicks(name, QStringLiteral("Mill"));
        mended = problemShown(window);
        QTest::keyClick(window.findChild<QTableView*>(QStringLiteral("vsfSlaves")), Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(good, QString());
    EXPECT_EQ(blank, QStringLiteral("Name must not be empty"));
    EXPECT_EQ(tip, blank);
    EXPECT_TRUE(shownAfterEnter);
    EXPECT_EQ(mended, QString());
    EXPECT_FALSE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Mill");
}

TEST_F(QtEthConfigDialogTest, TheNameOfAnotherInstanceIsExplainedAndEnterStillShowsMessage110) {
    bench.instances->Seed(L"Other");
    bench.reopen(L"Plant", defaultTable());
    QString explained;
    bool shownAfterEnter = false;
    std::vector<QString> boxes;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(name, QStringLiteral("Other"));
        explained = problemShown(window);
        test::saveScreenshot(window, QStringLiteral("eth_config_explained.png"));
        test::onModal(QString(), [&](QWidget& box) {
            boxes.push_back(box.metaObject()->className());
            QTest::keyClick(&box, Qt::Key_Return);
        });
        QTest::keyClick(name, Qt::Key_Return);
        shownAfterEnter = window.isVisible();
        QTest::keyClick(name, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(explained, QStringLiteral("Name \"Other\" is already used by another instance"));
    EXPECT_TRUE(shownAfterEnter);
    EXPECT_EQ(boxes, (std::vector<QString>{QStringLiteral("QMessageBox")}));
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 110);
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
}

TEST_F(QtEthConfigDialogTest, AnUnlinkedOperandOfANewConfigIsExplainedByItsRow) {
    bench.makeNew();
    QString explained, tip;
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        explained = problemShown(window);
        tip = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->toolTip();
        QTest::keyClick(&window, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(explained.startsWith(QStringLiteral("IN operand \""))) << explained.toStdString();
    EXPECT_TRUE(explained.endsWith(QStringLiteral("\" must be linked: double-click its row")))
        << explained.toStdString();
    EXPECT_EQ(tip, explained);
}

// The address dialog of row 1's port, opened with the mouse; the action runs on it.
void onPortDialog(QWidget& window, const std::function<void(QWidget&)>& action) {
    auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
    test::onModal(QStringLiteral("frmEthAddressParam"), [action](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        action(dialog);
    });
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 2));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, ellipsisOf(*grid, 1, 2));
}

TEST_F(QtEthConfigDialogTest, EachPortRuleIsExplainedLiveAndEnterTakesOnlyAGoodPort) {
    bench.reopen(L"Plant", defaultTable());
    std::vector<QString> shown;
    QString tip = QStringLiteral("?");
    bool shownAfterBadEnter = false;
    QString portCell;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        onPortDialog(window, [&](QWidget& dialog) {
            auto* port = dialog.findChild<QLineEdit*>(QStringLiteral("txtConstValueEx"));
            port->setFocus(Qt::TabFocusReason);
            shown.push_back(problemShown(dialog));
            for (const QString& typed : {QStringLiteral("0"), QStringLiteral("32768"), QStringLiteral("080")}) {
                QTest::keyClick(port, Qt::Key_A, Qt::ControlModifier);
                QTest::keyClicks(port, typed);
                shown.push_back(problemShown(dialog));
            }
            tip = dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"))->toolTip();
            test::saveScreenshot(dialog, QStringLiteral("eth_port_explained.png"));
            QTest::keyClick(port, Qt::Key_Return);
            shownAfterBadEnter = dialog.isVisible();
            QTest::keyClick(port, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(port, QStringLiteral("502"));
            shown.push_back(problemShown(dialog));
            QTest::keyClick(port, Qt::Key_Return);
            test::endIfStillShown(dialog);
        });
        portCell = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"))->model()->index(0, 2).data().toString();
        QTest::keyClick(&window, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(shown, (std::vector<QString>{QString(), QStringLiteral("Port must be 1 to 32767"),
                                           QStringLiteral("Port must be 1 to 32767"),
                                           QStringLiteral("Port must be written without leading zeros"), QString()}));
    EXPECT_EQ(tip, QStringLiteral("Port must be written without leading zeros"));
    EXPECT_TRUE(shownAfterBadEnter);
    EXPECT_EQ(portCell, QStringLiteral("502"));
}

TEST_F(QtEthConfigDialogTest, EachIPRuleIsExplainedLiveAndEscapeLeavesTheCellAsItWas) {
    bench.reopen(L"Plant", defaultTable());
    std::vector<QString> shown;
    QString ipCell = QStringLiteral("?");
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        test::onModal(QStringLiteral("frmEthAddressParam"), [&](QWidget& dialog) {
            QApplication::setActiveWindow(&dialog);
            auto* ip = dialog.findChild<QLineEdit*>(QStringLiteral("ctlIPAddress"));
            ip->setFocus(Qt::TabFocusReason);
            for (const QString& typed : {QStringLiteral("192.168.1"), QStringLiteral("192.168.1.300"),
                                         QStringLiteral("0.1.2.3"), QStringLiteral("192.168.1.10")}) {
                ip->selectAll();
                QTest::keyClicks(ip, typed);
                shown.push_back(problemShown(dialog));
            }
            QTest::keyClick(ip, Qt::Key_Escape);
            test::endIfStillShown(dialog);
        });
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(*grid, 1, 1));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, ellipsisOf(*grid, 1, 1));
        ipCell = grid->model()->index(0, 1).data().toString();
        QTest::keyClick(&window, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(shown, (std::vector<QString>{
                         QStringLiteral("IP address must be four numbers separated by dots, as in 192.168.0.10"),
                         QStringLiteral("IP address part 4 must be 0 to 255"),
                         QStringLiteral("IP address part 1 must not be 0"), QString()}));
    EXPECT_EQ(ipCell, QString());
}

}  // namespace
}  // namespace qx
