// The TCP/IP Send dialog on screen, opened by Edit of a TCP/IP Send set
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

#include "editors/eth_send_dialog_bench.h"
#include "framework/shared_helpers.h"
#include "message/protocol_numeric_var.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::EthSendDialogBench;

class QtEthSendDialogTest : public ::testing::Test {
protected:
    EthSendDialogBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // Modbus-ASCII-style requests to a device behind a gateway: message 0
    // reads two holding registers (":010300000002FA" CR LF), message 1
    // writes register 1 with a four-digit number from MI 12 (":0106" the
    // number CR LF); the message chosen by MI 5, success reported to bit 12.
    void modbusMessages() {
        bench.stored({L"Gateway"});
        bench.messages({L":010300000002FA", L":0106"});
        clsProtocolMessage& read = *bench.set->GetMessage(1);
        read.AddControlChar(15, 13);
        read.AddControlChar(16, 10);
        clsProtocolMessage& write = *bench.set->GetMessage(2);
        auto number = std::make_shared<clsProtocolNumericVar>();
        number->StartPosition(5);
        number->BeforePoint(4);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        write.AddVar(number);
        const int32_t end = number->StartPosition() + number->Length();
        write.AddControlChar(end, 13);
        write.AddControlChar(end + 1, 10);
        bench.linkedMessageNumber();
    }
};

TEST_F(QtEthSendDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmEthProtocolSend dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Protocol: TCP/IP Send"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("Label2"))->text(), QStringLiteral("Send Message succeeded:"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdOpMsgsucceeded"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
    // No framing on a socket.
    EXPECT_EQ(view->findChild<QWidget*>(QStringLiteral("ckSendSTX")), nullptr);
    EXPECT_EQ(view->findChild<QWidget*>(QStringLiteral("cmdAdvanced")), nullptr);
    auto* list = view->findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(view->findChild<QToolBar*>(QStringLiteral("abSend"))->isAncestorOf(list));
}

TEST_F(QtEthSendDialogTest, KeysTypedIntoTheGridReachTheSetAsTheHeadlessEditDoes) {
    bench.stored();
    QString cellText;
    test::onModal(QStringLiteral("frmEthProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral(":0103"));
        QTest::keyClick(grid, Qt::Key_Backspace);
        cellText = grid->model()->index(0, 1).data().toString();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    EXPECT_TRUE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_EQ(cellText, QStringLiteral(":"));

    EthSendDialogBench headless;
    headless.stored();
    headless.edit([](frmEthProtocolSend& dialog) {
        EthSendDialogBench::type(dialog.FlgSend, L":0103");
        dialog.FlgSend.UserKeyPress(8);
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(headless.confirmed);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString(), headless.set->GetMessage(1)->MessageString());
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 5), L":010 ");
}

TEST_F(QtEthSendDialogTest, ANewSendOpensTheRealPickerOnItsFlagAtTheFirstActivation) {
    bench.method.makeNew();
    bench.instances->Seed(L"Gateway");
    QString flag;
    bool okEnabled = false;
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 1, 33); });
    test::onModal(QStringLiteral("frmEthProtocolSend"), [&](QWidget& window) {
        QApplication::processEvents();
        flag = window.findChild<QLabel*>(QStringLiteral("lbOpMsgsucceeded"))->text();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_FALSE(bench.method.succeeded().IsNew());
    EXPECT_EQ(bench.method.succeeded().OperandAddress(), 33);
    EXPECT_EQ(flag, toQString(GetOperandDisplayText(bench.method.succeeded())));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtEthSendDialogTest, AModbusStyleSendShowsItsMessagesAndBothLinks) {
    modbusMessages();
    QString numberLink, flag, colon, digit;
    bool okEnabled = false;
    test::onModal(QStringLiteral("frmEthProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 460);
        QApplication::processEvents();
        numberLink = window.findChild<QLabel*>(QStringLiteral("lbOpMsgNumToSend"))->text();
        flag = window.findChild<QLabel*>(QStringLiteral("lbOpMsgsucceeded"))->text();
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        colon = grid->model()->index(1, 1).data().toString();
        digit = grid->model()->index(0, 5).data().toString();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        test::saveScreenshot(window, QStringLiteral("eth_send_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_TRUE(numberLink.startsWith(QStringLiteral("MI 5")));
    EXPECT_EQ(flag, toQString(GetOperandDisplayText(bench.method.succeeded())));
    EXPECT_FALSE(flag.isEmpty());
    EXPECT_EQ(colon, QStringLiteral(":"));
    EXPECT_EQ(digit, QStringLiteral("3"));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtEthSendDialogTest, EscapeInTheMessageGridEndsTheDialogAsCancelDoes) {
    bench.stored();
    test::onModal(QStringLiteral("frmEthProtocolSend"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
}

TEST_F(QtEthSendDialogTest, EnterStaysInTheMessageGridAndOnTheInstanceListAcceptsAsOKDoes) {
    bench.stored();
    bool shownAfterGridEnter = false;
    test::onModal(QStringLiteral("frmEthProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Return);
        shownAfterGridEnter = window.isVisible();
        auto* list = window.findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
        list->setFocus(Qt::TabFocusReason);
        QTest::keyClick(list, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    EXPECT_TRUE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_TRUE(shownAfterGridEnter);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 2), L"AB");
}
}  // namespace
}  // namespace qx
