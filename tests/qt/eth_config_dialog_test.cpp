// The TCP/IP Config dialog and its address dialog on screen, driven by real
// key and mouse events through the Qt modal driver, against the same edit
// made headless.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
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

}  // namespace
}  // namespace qx
