// The Scan dialogs' test against captured bytes: pasted hexadecimal digits
// are cut into frames and recognised by the runtime model, the result is
// listed frame by frame, and the message that took the first frame becomes
// the grid's current row.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "editors/frm_protocol_send.h"
#include "editors/scan_dialog_bench.h"
#include "message/protocol_scan_numeric_var.h"
#include "qt/capture_test.h"
#include "qt/qt_modal_driver.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::ScanDialogBench;

class QtCaptureTestPaneTest : public ::testing::Test {
protected:
    ScanDialogBench bench;
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // A scale's replies, each ended by the end character CR: "OK", and "W"
    // with a signed weight of five digits into MI 12.
    void scaleReplies() {
        bench.linked();
        bench.messages({L"OK", L"W"});
        clsProtocolMessage& weight = *bench.set->GetMessage(2);
        auto number = std::make_shared<clsProtocolScanNumericVar>();
        number->StartPosition(1);
        number->BeforePoint(5);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        weight.AddVar(number);
        bench.set->MessageLengthValue(0);
        bench.set->ScanETXLength(1);
        bench.set->SetScanETXValue(0, 0x0D, false);
    }
};

TEST_F(QtCaptureTestPaneTest, PastedBytesAreRecognisedFrameByFrameAndTheMessageIsShown) {
    scaleReplies();
    QString result, refused;
    int rowBefore = -1, rowAfter = -1;
    bool dialogStillOpen = false;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 720);
        auto* pane = window.findChild<CaptureTestPane*>();
        ASSERT_NE(pane, nullptr);
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgScan"));
        rowBefore = grid->currentIndex().row();
        auto* bytes = pane->findChild<QLineEdit*>();
        QTest::keyClicks(bytes, QStringLiteral("57 2D 30 30 30 34 32 0D 4F 58 0D 4F"));
        // Enter runs the test and does not reach the dialog.
        QTest::keyClick(bytes, Qt::Key_Return);
        dialogStillOpen = window.isVisible();
        QApplication::processEvents();
        result = pane->ResultText();
        rowAfter = grid->currentIndex().row();
        test::saveScreenshot(window, QStringLiteral("capture_test.png"));
        pane->TestHex(QStringLiteral("5"));
        refused = pane->ResultText();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(*bench.scan, bench.instances));
    EXPECT_EQ(result, QStringLiteral("Frame at byte 0: message 1, MI 12 = -42\n"
                                     "Frame at byte 8: no message.\n"
                                     "    message 0, position 1: \"K\" expected, \"X\" received\n"
                                     "    message 1, position 0: \"W\" expected, \"O\" received\n"
                                     "1 bytes at the end make no complete frame."));
    EXPECT_TRUE(dialogStillOpen);
    EXPECT_EQ(rowBefore, 0);
    EXPECT_EQ(rowAfter, 1);
    EXPECT_EQ(refused, QStringLiteral("Pairs of hexadecimal digits are needed, as in 02 57 0D 0A 03."));
}

TEST_F(QtCaptureTestPaneTest, TheTcpIpScanHasThePaneAndASendDialogDoesNot) {
    test::EthScanDialogBench eth;
    std::shared_ptr<ModalDriver> ethScripted = eth.context->Driver;
    eth.context->Driver = std::make_shared<QtModalDriver>();
    eth.linked();
    eth.messages({L"PONG"});
    QString result;
    test::onModal(QStringLiteral("frmEthProtocolScan"), [&](QWidget& window) {
        if (auto* pane = window.findChild<CaptureTestPane*>()) {
            pane->TestHex(QStringLiteral("50 4F 4E 47"));
            result = pane->ResultText();
        }
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    eth.set->Edit(*eth.scan, eth.instances);
    // A TCP/IP Scan has no terminator: the bytes are one frame.
    EXPECT_EQ(result, QStringLiteral("Frame at byte 0: message 0"));

    frmProtocolSend send;
    QWidget window;
    addCaptureTest(send, window);
    EXPECT_EQ(window.findChild<CaptureTestPane*>(), nullptr);
}

}  // namespace
}  // namespace qx
