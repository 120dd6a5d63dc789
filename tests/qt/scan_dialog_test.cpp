// The serial Scan dialog on screen, opened by Edit of a Scan set through the
// Qt modal driver and driven by real key and mouse events, against the same
// edit made headless.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QToolBar>

#include "editors/scan_dialog_bench.h"
#include "message/protocol_scan_numeric_var.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::ScanDialogBench;

class QtScanDialogTest : public ::testing::Test {
protected:
    ScanDialogBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // A weighing scale's replies: "ST,GS," then the weight as a number of
    // five digits and two decimals into MI 12, then "kg"; and "OL" when it is
    // overloaded. Each reply ends with CR LF.
    void scaleReplies() {
        bench.linked();
        bench.messages({L"ST,GS,", L"OL"});
        clsProtocolMessage& weight = *bench.set->GetMessage(1);
        auto number = std::make_shared<clsProtocolScanNumericVar>();
        number->StartPosition(6);
        number->BeforePoint(5);
        number->AfterPoint(2);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        weight.AddVar(number);
        const int32_t end = number->StartPosition() + number->Length();
        std::wstring text = weight.MessageString();
        text.replace(static_cast<size_t>(end), 2, L"kg");
        weight.MessageString(text);
        weight.MessageLength(17);
        bench.set->MessageLengthValue(0);
        bench.set->ScanETXLength(2);
        bench.set->SetScanETXValue(0, 0x0D, false);
        bench.set->SetScanETXValue(1, 0x0A, false);
    }
};

TEST_F(QtScanDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolScan dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Protocol Scan"));
    EXPECT_EQ(view->findChild<QRadioButton*>(QStringLiteral("opSilenceTime"))->text(),
              QStringLiteral("Silence: Duration (mS)"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdFailLink"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
    auto* list = view->findChild<QComboBox*>(QStringLiteral("cbInstanceName"));
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(view->findChild<QToolBar*>(QStringLiteral("abScan"))->isAncestorOf(list));
}

TEST_F(QtScanDialogTest, KeysTypedIntoTheGridReachTheSetAsTheHeadlessEditDoes) {
    bench.linked();
    QString cellText;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("OK12"));
        QTest::keyClick(grid, Qt::Key_Backspace);
        cellText = grid->model()->index(0, 2).data().toString();
        auto* endOfText = window.findChild<QRadioButton*>(QStringLiteral("opEndOfText"));
        QTest::mouseClick(endOfText, Qt::LeftButton, {}, QPoint(8, endOfText->height() / 2));
        auto* etxGrid = window.findChild<QTableView*>(QStringLiteral("flgETX"));
        QTest::keyClicks(etxGrid, QStringLiteral("#"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    EXPECT_TRUE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_EQ(cellText, QStringLiteral("O"));

    ScanDialogBench headless;
    headless.linked();
    headless.edit([](frmProtocolScan& dialog) {
        ScanDialogBench::type(dialog.FlgScan, L"OK12");
        dialog.FlgScan.UserKeyPress(8);
        dialog.opEndOfText.UserClick();
        ScanDialogBench::type(dialog.flgETX, L"#");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(headless.confirmed);
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString(), headless.set->GetMessage(1)->MessageString());
    EXPECT_EQ(bench.set->GetMessage(1)->MessageString().substr(0, 4), L"OK1 ");
    EXPECT_EQ(bench.set->ScanETXChars(), headless.set->ScanETXChars());
    EXPECT_EQ(bench.set->ScanETXLength(), 1);
    EXPECT_EQ(bench.set->MessageLengthValue(), 0);
}

TEST_F(QtScanDialogTest, AWeighingScaleScanShowsItsRepliesTerminatorAndLinks) {
    scaleReplies();
    QString endOfMessage, link, etxCell, lengthCell;
    int etxFirstWidth = 0, etxLastWidth = 0;
    bool endOfTextChecked = false;
    bool lengthListEnabled = true;
    bool okEnabled = false;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 640);
        QApplication::processEvents();
        endOfMessage = window.findChild<QLabel*>(QStringLiteral("lbETXEndOfMsg"))->text();
        link = window.findChild<QLabel*>(QStringLiteral("lblOpReceived"))->text();
        endOfTextChecked = window.findChild<QRadioButton*>(QStringLiteral("opEndOfText"))->isChecked();
        lengthListEnabled = window.findChild<QComboBox*>(QStringLiteral("cbMessageLength"))->isEnabled();
        auto* etx = window.findChild<QTableView*>(QStringLiteral("flgETX"));
        etxCell = etx->model()->index(0, 1).data().toString();
        etxFirstWidth = etx->columnWidth(0);
        etxLastWidth = etx->columnWidth(1);
        lengthCell = window.findChild<QTableView*>(QStringLiteral("FlgScan"))->model()->index(0, 1).data().toString();
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
        test::saveScreenshot(window, QStringLiteral("scan_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_EQ(endOfMessage, QStringLiteral("ETX"));
    EXPECT_TRUE(link.startsWith(QStringLiteral("MI 20")));
    EXPECT_TRUE(endOfTextChecked);
    EXPECT_FALSE(lengthListEnabled);
    EXPECT_EQ(etxCell, QStringLiteral("0A"));
    // The last end byte has a cell of the same size as the first.
    EXPECT_GT(etxFirstWidth, 0);
    EXPECT_EQ(etxLastWidth, etxFirstWidth);
    EXPECT_EQ(lengthCell, QStringLiteral("17"));
    EXPECT_TRUE(okEnabled);
}

TEST_F(QtScanDialogTest, EscapeInTheMessageGridEndsTheDialogAsCancelDoes) {
    bench.linked();
    test::onModal(QStringLiteral("frmProtocolScan"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(grid, QStringLiteral("AB"));
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
}

TEST_F(QtScanDialogTest, EnterStaysInTheMessageGridAndOnTheInstanceListAcceptsAsOKDoes) {
    bench.linked();
    bool shownAfterGridEnter = false;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
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
