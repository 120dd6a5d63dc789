// The pane of wire bytes under the Send dialogs' grid: it shows the current
// message as the runtime model renders it, follows typing, a change of row
// and the frame, and the TCP/IP dialog has one too.

#include "qt/wire_preview.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QTableView>
#include <QTest>

#include "editors/eth_send_dialog_bench.h"
#include "editors/frm_protocol_scan.h"
#include "editors/send_dialog_bench.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_numeric_var.h"
#include "qt/qt_modal_driver.h"
#include "qt/view_checksums.h"
#include "qt_test_support.h"
#include "runtime_model/send_renderer.h"

namespace qx {
namespace {

using test::SendDialogBench;

class QtWirePreviewTest : public ::testing::Test {
protected:
    SendDialogBench bench;
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }

    // A scale's requests: "W" CR LF and "T", a five-digit number, CR LF,
    // framed by STX and ETX.
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
        number->LeadingZeros(1);
        test::linkOperand(*number->LikedOperand(), 3, 12);
        tare.AddVar(number);
        tare.AddControlChar(7, 13);
        tare.AddControlChar(8, 10);
        bench.linkedMessageNumber();
        bench.set->SendSTXLength(1);
        bench.set->SetSendSTXValue(0, 0x02, false);
        bench.set->SendETXLength(1);
        bench.set->SetSendETXValue(0, 0x03, false);
    }
};

TEST_F(QtWirePreviewTest, ThePaneShowsTheCurrentMessageAndFollowsTypingRowsAndTheFrame) {
    scaleMessages();
    QString first, typed, second, secondTitle, unframed;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        window.resize(900, 600);
        auto* preview = window.findChild<WirePreview*>();
        ASSERT_NE(preview, nullptr);
        QApplication::processEvents();
        first = preview->HexText();
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(grid, Qt::Key_Home);
        QTest::keyClicks(grid, QStringLiteral("G"));
        QApplication::processEvents();
        typed = preview->PlainText();
        QTest::keyClick(grid, Qt::Key_Down);
        QApplication::processEvents();
        second = preview->PlainText();
        secondTitle = preview->Title();
        test::saveScreenshot(window, QStringLiteral("wire_preview.png"));
        QTest::mouseClick(window.findChild<QCheckBox*>(QStringLiteral("ckSendSTX")), Qt::LeftButton, {}, QPoint(8, 8));
        QApplication::processEvents();
        unframed = preview->PlainText();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    EXPECT_FALSE(bench.set->Edit(bench.method, bench.instances));
    EXPECT_EQ(first, QStringLiteral("02 57 0D 0A 03"));
    EXPECT_EQ(typed, QStringLiteral("<STX>GW<CR><LF><ETX>"));
    EXPECT_EQ(second, QStringLiteral("<STX>T+00000<CR><LF><ETX>"));
    // The grid counts its rows from 0, and so does the pane under it.
    EXPECT_EQ(secondTitle, QStringLiteral("Message 1 on the wire, 11 bytes, every operand 0:"));
    EXPECT_EQ(unframed, QStringLiteral("T+00000<CR><LF><ETX>"));
}

// The pane computes checksums by the project's table, which the host hands
// to the view layer: "CRC-16" read as CRC-16/MODBUS gives other bytes than
// the default CRC-16/ARC, low byte first.
TEST_F(QtWirePreviewTest, ThePaneComputesTheChecksumByTheProjectsTable) {
    bench.linkedTo({L"Scale"});
    bench.messages({L"W"});
    bench.linkedMessageNumber();
    bench.set->SendETXLength(1);
    bench.set->SetSendETXValue(0, 0x03, false);
    bench.set->EndOfSendMessageType(3);
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->FormatView(2);
    checksum->CSLength(2);
    checksum->CalculationType(3);
    bench.set->SendChecksum(checksum);
    model::ChecksumTable modbus = model::ChecksumTable::Default();
    for (const model::ChecksumDefinition& known : model::knownChecksums())
        if (known.Name == "CRC-16/MODBUS") modbus.Definition(3, known);
    const auto hexOf = [this](const model::ChecksumTable& table) {
        const std::vector<uint8_t> bytes = model::renderSendMessage(*bench.set, 1, {}, {}, table).Bytes;
        QStringList out;
        for (uint8_t byte : bytes) out << QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
        return out.join(QLatin1Char(' '));
    };
    const QString arc = hexOf(model::ChecksumTable::Default()), rtu = hexOf(modbus);
    ASSERT_NE(arc, rtu);
    ASSERT_EQ(rtu.left(5), QStringLiteral("57 03"));

    QString shown;
    setViewChecksumTable(modbus);
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
        QApplication::processEvents();
        shown = window.findChild<WirePreview*>()->HexText();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.set->Edit(bench.method, bench.instances);
    setViewChecksumTable(model::ChecksumTable::Default());
    EXPECT_EQ(shown, rtu);
}

TEST_F(QtWirePreviewTest, TheTcpIpSendHasThePaneAndOtherDialogsDoNot) {
    test::EthSendDialogBench eth;
    std::shared_ptr<ModalDriver> ethScripted = eth.context->Driver;
    eth.context->Driver = std::make_shared<QtModalDriver>();
    eth.stored();
    eth.messages({L"PING"});
    QString shown;
    test::onModal(QStringLiteral("frmEthProtocolSend"), [&](QWidget& window) {
        QApplication::processEvents();
        if (auto* preview = window.findChild<WirePreview*>()) shown = preview->PlainText();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    eth.set->Edit(eth.method, eth.instances);
    EXPECT_EQ(shown, QStringLiteral("PING"));

    frmProtocolScan scan;
    QWidget window;
    addWirePreview(scan, window);
    EXPECT_EQ(window.findChild<WirePreview*>(), nullptr);
}

}  // namespace
}  // namespace qx
