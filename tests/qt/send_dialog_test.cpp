// The serial Send dialog on screen, opened by Edit of a Send set through the
// Qt modal driver and driven by real key and mouse events, against the same
// edit made headless.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QToolBar>

#include "editors/send_dialog_bench.h"
#include "message/protocol_numeric_var.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::SendDialogBench;

class QtSendDialogTest : public ::testing::Test {
protected:
    SendDialogBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // A weighing scale: message 0 asks for the weight ("W" CR LF), message 1
    // sets the tare ("T", a five-digit number from MI 12, CR LF); both framed
    // by STX and ETX, the message chosen by MI 5.
    void scaleMessages() {
        bench.linkedTo({L"Scale"});
        bench.messages({L"W", L"T"});
        clsProtocolMessage& weight = *bench.set->GetMessage(1);
        weight.AddControlChar(1, 13);
        weight.AddControlChar(2, 10);
        clsProtocolMessage& tare = *bench.set->GetMessage(2);
        auto number = std::make_shared<clsProtocolNumericVar>();
        number->StartPosition(1);
        number->BeforePoint(5);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        tare.AddVar(number);
        const int32_t end = number->StartPosition() + number->Length();
        tare.AddControlChar(end, 13);
        tare.AddControlChar(end + 1, 10);
        bench.linkedMessageNumber();
        bench.set->SendSTXLength(1);
        bench.set->SetSendSTXValue(0, 0x02, false);
        bench.set->SendETXLength(1);
        bench.set->SetSendETXValue(0, 0x03, false);
    }
};

TEST_F(QtSendDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolSend dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Protocol Send"));
    EXPECT_EQ(view->findChild<QCheckBox*>(QStringLiteral("ckSendSTX"))->text(), QStringLiteral("Start Of Text (STX)"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdOpMsgNumToSend"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
    // The instance list rides on the toolbar.
    auto* list = view->findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(view->findChild<QToolBar*>(QStringLiteral("abSend"))->isAncestorOf(list));
}

TEST_F(QtSendDialogTest, KeysTypedIntoTheGridReachTheSetAsTheHeadlessEditDoes) {
    bench.linkedTo();
    QString cellText;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("W12"));
        QTest::keyClick(grid, Qt::Key_Backspace);
        cellText = grid->model()->index(0, 1).data().toString();
        auto* stx = window.findChild<QCheckBox*>(QStringLiteral("ckSendSTX"));
        QTest::mouseClick(stx, Qt::LeftButton, {}, QPoint(8, stx->height() / 2));
        auto* stxGrid = window.findChild<QTableView*>(QStringLiteral("flgSendSTX"));
        QTest::keyClicks(stxGrid, QStringLiteral("@"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    EXPECT_TRUE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_EQ(cellText, QStringLiteral("W"));

    SendDialogBench headless;
    headless.linkedTo();
    headless.edit([](frmProtocolSend& dialog) {
        SendDialogBench::type(dialog.FlgSend, L"W12");
        dialog.FlgSend.UserKeyPress(8);
        dialog.ckSendSTX.UserClick();
        SendDialogBench::type(dialog.flgSendSTX, L"@");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(headless.confirmed);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString(), headless.set->GetMessage(1)->MessageString());
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 3), L"W1 ");
    EXPECT_EQ(bench.set->SendSTXChars(), headless.set->SendSTXChars());
    EXPECT_EQ(bench.set->SendSTXLength(), 1);
}

TEST_F(QtSendDialogTest, AWeighingScaleSendShowsItsMessagesFramingAndLink) {
    scaleMessages();
    QString endOfMessage, link, stxCell, tareCell;
    bool stxChecked = false;
    bool okEnabled = false;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 520);
        QApplication::processEvents();
        endOfMessage = window.findChild<QLabel*>(QStringLiteral("lbSendETXEndOfMsg"))->text();
        link = window.findChild<QLabel*>(QStringLiteral("lbOpMsgNumToSend"))->text();
        stxChecked = window.findChild<QCheckBox*>(QStringLiteral("ckSendSTX"))->isChecked();
        stxCell = window.findChild<QTableView*>(QStringLiteral("flgSendSTX"))->model()->index(0, 0).data().toString();
        tareCell = window.findChild<QTableView*>(QStringLiteral("FlgSend"))->model()->index(1, 2).data().toString();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        test::saveScreenshot(window, QStringLiteral("send_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_EQ(endOfMessage, QStringLiteral("ETX"));
    EXPECT_TRUE(link.startsWith(QStringLiteral("MI 5")));
    EXPECT_TRUE(stxChecked);
    EXPECT_EQ(stxCell, QStringLiteral("02"));
    EXPECT_EQ(tareCell, QStringLiteral("1"));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtSendDialogTest, EscapeInTheMessageGridEndsTheDialogAsCancelDoes) {
    bench.linkedTo();
    test::onModal(QStringLiteral("frmProtocolSend"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
}

TEST_F(QtSendDialogTest, EnterStaysInTheMessageGridAndOnTheInstanceListAcceptsAsOKDoes) {
    bench.linkedTo();
    bool shownAfterGridEnter = false;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
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
