// The TCP/IP Scan dialog on screen, opened by Edit of a TCP/IP Scan set
// through the Qt modal driver and driven by real key and mouse events,
// against the same edit made headless.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <functional>
#include <vector>

#include "editors/scan_dialog_bench.h"
#include "framework/shared_helpers.h"
#include "message/protocol_scan_numeric_var.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::EthScanDialogBench;

class QtEthScanDialogTest : public ::testing::Test {
protected:
    EthScanDialogBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // A device's Modbus-ASCII-style replies through a gateway: message 0
    // answers a read of two registers (":010304", the value as a sign and
    // eight digits into MI 12, CR LF), message 1 echoes a write (":0106", a
    // sign and four digits into MI 14, CR LF). The column of lengths tells
    // the controller how many bytes each reply has.
    void modbusReplies() {
        bench.linked();
        bench.messages({L":010304", L":0106"});
        const auto reply = [&](int32_t message, int32_t start, int32_t digits, int32_t address) {
            clsProtocolMessage& text = *bench.set->GetMessage(message);
            auto number = std::make_shared<clsProtocolScanNumericVar>();
            number->StartPosition(start);
            number->BeforePoint(digits);
            test::linkOperand(*number->LikedOperand(), 3, address);
            text.AddVar(number);
            const int32_t end = number->StartPosition() + number->Length();
            text.AddControlChar(end, 13);
            text.AddControlChar(end + 1, 10);
            text.MessageLength(end + 2);
        };
        reply(1, 7, 8, 12);
        reply(2, 5, 4, 14);
    }
};

TEST_F(QtEthScanDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmEthProtocolScan dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Protocol: TCP/IP Scan"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("Label5"))->text(),
              QStringLiteral("IP Start of Vector, 5 Integers"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdIpStartOfVector"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
    // No framing and no terminators on a socket.
    EXPECT_EQ(view->findChild<QWidget*>(QStringLiteral("ckSTX")), nullptr);
    EXPECT_EQ(view->findChild<QWidget*>(QStringLiteral("opEndOfText")), nullptr);
    auto* list = view->findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(view->findChild<QToolBar*>(QStringLiteral("abScan"))->isAncestorOf(list));
}

TEST_F(QtEthScanDialogTest, KeysTypedIntoTheGridReachTheSetAsTheHeadlessEditDoes) {
    bench.linked();
    QString cellText;
    test::onModal(QStringLiteral("frmEthProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("ACK9"));
        QTest::keyClick(grid, Qt::Key_Backspace);
        QTest::keyClick(grid, Qt::Key_Home);
        QTest::keyClick(grid, Qt::Key_Delete);
        cellText = grid->model()->index(0, 2).data().toString();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    EXPECT_TRUE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_EQ(cellText, QStringLiteral("C"));

    EthScanDialogBench headless;
    headless.linked();
    headless.edit([](frmEthProtocolScan& dialog) {
        EthScanDialogBench::type(dialog.FlgScan, L"ACK9");
        dialog.FlgScan.UserKeyPress(8);
        dialog.FlgScan.UserKeyDown(36);  // Home
        dialog.FlgScan.UserKeyDown(46);  // Delete
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(headless.confirmed);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString(), headless.set->GetMessage(1)->MessageString());
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 3), L"CK ");
}

TEST_F(QtEthScanDialogTest, ANewScanOpensTheRealPickerOnItsFiveLinksInOrder) {
    bench.fresh();
    const std::vector<int32_t> types{1, 3, 3, 3, 3};
    const std::vector<int32_t> addresses{10, 20, 21, 22, 30};
    std::vector<int32_t> vectorLengths;
    std::function<void(size_t)> pickNext = [&](size_t k) {
        if (k >= addresses.size()) return;
        test::onModal(QStringLiteral("OperandPicker"), [&, k](QWidget& picker) {
            vectorLengths.push_back(bench.operand(static_cast<int32_t>(k) + 1)->OperandVectorLength());
            test::pickWithKeys(picker, types[k], addresses[k]);
            pickNext(k + 1);
        });
    };
    pickNext(0);
    QString vectorLabel;
    bool okEnabled = false;
    test::onModal(QStringLiteral("frmEthProtocolScan"), [&](QWidget& window) {
        QApplication::processEvents();
        vectorLabel = window.findChild<QLabel*>(QStringLiteral("lbIpStartOfVector"))->text();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
    for (int32_t k = 1; k <= 5; ++k) {
        EXPECT_FALSE(bench.operand(k)->IsNew()) << k;
        EXPECT_EQ(bench.operand(k)->OperandAddress(), addresses[static_cast<size_t>(k) - 1]) << k;
    }
    EXPECT_EQ(vectorLengths, (std::vector<int32_t>{1, 1, 1, 1, 5}));
    EXPECT_EQ(vectorLabel, toQString(GetOperandDisplayText(*bench.operand(5))));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtEthScanDialogTest, AModbusStyleScanShowsItsRepliesLengthsAndFiveLinks) {
    modbusReplies();
    QString colon, length, received, vector;
    bool okEnabled = false;
    test::onModal(QStringLiteral("frmEthProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 560);
        QApplication::processEvents();
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        colon = grid->model()->index(1, 2).data().toString();
        length = grid->model()->index(0, 1).data().toString();
        received = window.findChild<QLabel*>(QStringLiteral("lblOpReceived"))->text();
        vector = window.findChild<QLabel*>(QStringLiteral("lbIpStartOfVector"))->text();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        test::saveScreenshot(window, QStringLiteral("eth_scan_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_EQ(colon, QStringLiteral(":"));
    // ":010304", a sign, eight digits, CR LF.
    EXPECT_EQ(length, QStringLiteral("18"));
    EXPECT_TRUE(received.startsWith(QStringLiteral("MI 20")));
    EXPECT_TRUE(vector.startsWith(QStringLiteral("MI 30")));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtEthScanDialogTest, EscapeInTheMessageGridEndsTheDialogAsCancelDoes) {
    bench.linked();
    test::onModal(QStringLiteral("frmEthProtocolScan"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
}

TEST_F(QtEthScanDialogTest, EnterStaysInTheMessageGridAndOnTheInstanceListAcceptsAsOKDoes) {
    bench.linked();
    bool shownAfterGridEnter = false;
    test::onModal(QStringLiteral("frmEthProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Return);
        shownAfterGridEnter = window.isVisible();
        auto* list = window.findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
        list->setFocus(Qt::TabFocusReason);
        QTest::keyClick(list, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    EXPECT_TRUE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_TRUE(shownAfterGridEnter);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 2), L"AB");
}
}  // namespace
}  // namespace qx
