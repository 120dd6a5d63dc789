// The live line of the Send and Scan dialogs: the current message goes out
// on a pseudo-terminal byte for byte as the model renders it, a device's
// replies over TCP are cut into frames and decoded as they arrive (split,
// glued, noise, a frame cut by its time), the capture is saved for qxfb
// decode and loaded again, and a line that cannot open says why in words
// while the window goes on.

#include "qt/live_pane.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <filesystem>
#include <future>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "editors/scan_dialog_bench.h"
#include "inspect/text_form.h"
#include "editors/send_dialog_bench.h"
#include "link/link_fixtures.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "qt/qt_modal_driver.h"
#include "qt/view_checksums.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "qt_test_support.h"
#include "runtime_model/send_renderer.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

using test::Wire;

Wire ascii(const std::string& text) { return {text.begin(), text.end()}; }

bool waitFor(const std::function<bool()>& done) { return QTest::qWaitFor(done, 10000); }

LivePane* openLivePane(QWidget& window) {
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("liveLine")), Qt::LeftButton);
    auto* pane = window.findChild<LivePane*>(QStringLiteral("livePane"));
    if (pane) QApplication::processEvents();
    return pane;
}

void chooseLine(LivePane& pane, int kind, const QString& where) {
    pane.findChild<QComboBox*>(QStringLiteral("lineKind"))->setCurrentIndex(kind);
    if (kind == 0)
        pane.findChild<QComboBox*>(QStringLiteral("port"))->setEditText(where);
    else
        pane.findChild<QLineEdit*>(QStringLiteral("address"))->setText(where);
}

QByteArray bytesOf(const Wire& wire) { return QByteArray(reinterpret_cast<const char*>(wire.data()), qsizetype(wire.size())); }

TEST(QtLivePaneTest, TheCurrentMessageGoesOutOnASerialPortAsTheModelRendersItAndTheLogShowsIt) {
    test::SendDialogBench bench;
    bench.context->Driver = std::make_shared<QtModalDriver>();
    // "W" CR LF and "T" with a five-digit number, framed by STX and ETX.
    bench.linkedTo({L"Scale"});
    bench.messages({L"W", L"T"});
    bench.set->GetMessage(1)->AddControlChar(1, 13);
    bench.set->GetMessage(1)->AddControlChar(2, 10);
    auto number = std::make_shared<clsProtocolNumericVar>();
    number->StartPosition(1);
    number->BeforePoint(5);
    number->LeadingZeros(1);
    test::linkOperand(*number->LikedOperand(), 3, 12);
    bench.set->GetMessage(2)->AddVar(number);
    bench.linkedMessageNumber();
    bench.set->SendSTXLength(1);
    bench.set->SetSendSTXValue(0, 0x02, false);
    bench.set->SendETXLength(1);
    bench.set->SetSendETXValue(0, 0x03, false);

    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    test::ScratchFolder scratch{"qt_live_pane"};
    const QString capturePath = QString::fromStdString((scratch.path() / "capture.bin").string());
    bool connected = false, sentShown = false, answerShown = false;
    Wire onTheWire;
    QString status, log;
    QByteArray saved;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& window) {
        LivePane* pane = openLivePane(window);
        ASSERT_NE(pane, nullptr);
        chooseLine(*pane, 0, QString::fromStdString(pty.path()));
        pane->Connect();
        connected = waitFor([&] { return pane->Connected(); });
        status = pane->Status();
        // Message 1 of the grid (its second row): "T" and the number, every operand 0.
        auto* grid = window.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(grid, Qt::Key_Down);
        EXPECT_TRUE(pane->SendMessage());
        onTheWire = pty.read(9);
        sentShown = waitFor([&] { return pane->LogText().contains(QStringLiteral("sent message 1, 9 bytes")); });
        // The device answers; a Send dialog has no Scan to decode it with.
        pty.write(ascii("OK\r"));
        answerShown = waitFor([&] { return pane->LogText().contains(QStringLiteral("received 3 bytes")); });
        pane->resize(900, 420);
        test::saveScreenshot(*pane, QStringLiteral("live_line_send.png"));
        EXPECT_TRUE(pane->SaveCapture(capturePath));
        QFile file(capturePath);
        if (file.open(QIODevice::ReadOnly)) saved = file.readAll();
        log = pane->LogText();
        pane->Disconnect();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.set->Edit(bench.method, bench.instances);
    EXPECT_TRUE(connected);
    EXPECT_EQ(status, QStringLiteral("Connected to %1.").arg(QString::fromStdString(pty.path())));
    EXPECT_EQ(onTheWire, (Wire{0x02, 'T', '+', '0', '0', '0', '0', '0', 0x03})) << "the rendered message, byte for byte";
    EXPECT_TRUE(sentShown) << log.toStdString();
    EXPECT_TRUE(answerShown) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("02 54 2B 30 30 30 30 30 03\n  <STX>T+00000<ETX>"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("4F 4B 0D\n  OK<CR>"))) << log.toStdString();
    EXPECT_EQ(saved, QByteArray("OK\r"));
}

TEST(QtLivePaneTest, ADevicesRepliesOverTcpAreDecodedAsTheyArriveAndTheCaptureLoadsAgain) {
    test::ScanDialogBench bench;
    bench.context->Driver = std::make_shared<QtModalDriver>();
    // A scale's replies, each ended by CR: "OK", and "W" with a signed
    // weight of five digits into MI 12.
    bench.linked();
    bench.messages({L"OK", L"W"});
    auto number = std::make_shared<clsProtocolScanNumericVar>();
    number->StartPosition(1);
    number->BeforePoint(5);
    test::linkOperand(*number->LikedOperand(), 3, 12);
    bench.set->GetMessage(2)->AddVar(number);
    bench.set->MessageLengthValue(0);
    bench.set->ScanETXLength(1);
    bench.set->SetScanETXValue(0, 0x0D, false);

    const std::unique_ptr<link::TcpServer> device = link::listenTcp(0);
    test::ScratchFolder scratch{"qt_live_pane_tcp"};
    const QString capturePath = QString::fromStdString((scratch.path() / "capture.bin").string());
    const Wire replies = ascii("W-00042\rOX\rOK\rW+00017\r");
    bool connected = false, decoded = false, cut = false, reloaded = false;
    QString log, loaded;
    QByteArray capture;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
      try {
        LivePane* pane = openLivePane(window);
        ASSERT_NE(pane, nullptr);
        chooseLine(*pane, 1, QStringLiteral("127.0.0.1:%1").arg(device->Port()));
        pane->Connect();
        connected = waitFor([&] { return pane->Connected(); }) && device->waitForPeer(std::chrono::seconds(5));
        // Split across writes and glued together, as a line delivers them.
        device->write(std::span(replies).subspan(0, 4));
        QTest::qWait(50);
        device->write(std::span(replies).subspan(4));
        decoded = waitFor([&] { return pane->LogText().count(QStringLiteral("received")) >= 4; });
        // A frame begun and never ended is cut when its time is up.
        device->write(ascii("W+0"));
        cut = waitFor([&] { return pane->LogText().contains(QStringLiteral("received 3 bytes, cut")); });
        pane->resize(900, 480);
        test::saveScreenshot(*pane, QStringLiteral("live_line_scan.png"));
        log = pane->LogText();
        capture = pane->Capture();
        EXPECT_TRUE(pane->SaveCapture(capturePath));
        pane->Disconnect();
        pane->ClearLog();
        reloaded = pane->LoadCapture(capturePath);
        loaded = pane->LogText();
      } catch (const RuntimeError& e) {
        ADD_FAILURE() << toUtf8(e.Description());
      }
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.set->Edit(*bench.scan, bench.instances);
    EXPECT_TRUE(connected);
    EXPECT_TRUE(decoded) << log.toStdString();
    EXPECT_TRUE(cut) << log.toStdString();
    // The grid counts messages from 0: "W" is message 1.
    EXPECT_TRUE(log.contains(QStringLiteral("received 8 bytes: message 1, MI 12 = -42\n  57 2D 30 30 30 34 32 0D")))
        << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("received 3 bytes: no message\n  4F 58 0D\n  OX<CR>\n"
                                            "    message 0, position 1: \"K\" expected, \"X\" received")))
        << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("received 3 bytes: message 0\n")));
    EXPECT_TRUE(log.contains(QStringLiteral("received 8 bytes: message 1, MI 12 = 17")));
    EXPECT_EQ(capture, bytesOf(replies) + QByteArray("W+0"));
    EXPECT_TRUE(reloaded);
    EXPECT_TRUE(loaded.contains(QStringLiteral("byte 0: received 8 bytes: message 1, MI 12 = -42")))
        << loaded.toStdString();
    EXPECT_TRUE(loaded.contains(QStringLiteral("byte 14: received 8 bytes: message 1, MI 12 = 17")))
        << loaded.toStdString();
    EXPECT_TRUE(loaded.contains(QStringLiteral("3 bytes at the end make no complete frame."))) << loaded.toStdString();
}

// The scale of the README played by qxfb simulate on one of two joined
// pseudo-terminal pairs; a Scan dialog made of the scale's reply set sends
// the weigh request from its live line on the other and decodes the answer.
TEST(QtLivePaneTest, AScansLiveLineDecodesTheAnswerOfTheSimulatedScale) {
    const std::filesystem::path scale = std::filesystem::path(paths::sourceTree()) / "resources/examples/scale";
    const auto example = [&](const char* name) { return test::shellQuoted((scale / name).string()); };
    test::ScanDialogBench bench;
    bench.context->Driver = std::make_shared<QtModalDriver>();
    bench.linked();
    bench.set = textform::importScanSet(test::readFile(scale / "reply-scan.json"));
    test::PtyBridge line;
    ASSERT_TRUE(line.a.ok() && line.b.ok());
    test::ScratchFolder scratch{"qt_live_pane_simulator"};
    auto device = std::async(std::launch::async, [&] {
        return test::runCli(paths::builtCli(),
                            "simulate --send " + example("reply-send.json") + " --scan " + example("request-scan.json") +
                                " --rules " + example("rules.json") + " --serial " + line.a.path() +
                                " --count 1 --timeout 20000",
                            scratch.path());
    });
    bool answered = false;
    QString log;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
        LivePane* pane = openLivePane(window);
        ASSERT_NE(pane, nullptr);
        chooseLine(*pane, 0, QString::fromStdString(line.b.path()));
        pane->Connect();
        waitFor([&] { return pane->Connected(); });
        // The device opens its end in its own time: ask until it answers.
        for (int i = 0; i < 20 && !answered; ++i) {
            pane->SendHex(QStringLiteral("57 0D 0A"));
            answered = QTest::qWaitFor([&] { return pane->LogText().contains(QStringLiteral("received 16 bytes")); }, 500);
        }
        pane->resize(900, 300);
        test::saveScreenshot(*pane, QStringLiteral("live_line_simulator.png"));
        log = pane->LogText();
        pane->Disconnect();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.set->Edit(*bench.scan, bench.instances);
    const test::CliRun played = device.get();
    EXPECT_EQ(played.status, 0) << played.err;
    EXPECT_TRUE(answered) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("sent 3 bytes\n  57 0D 0A\n  W<CR><LF>"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("received 16 bytes: message 0, MI 100 = 1234, MI 101 = 2\n"
                                            "  53 54 2C 2B 30 30 30 31 32 2E 33 34 6B 67 0D 0A\n"
                                            "  ST,+00012.34kg<CR><LF>")))
        << log.toStdString();
}

TEST(QtLivePaneTest, ALineThatCannotOpenSaysWhyAndTheWindowWaitsForNothing) {
    test::ScanDialogBench bench;
    bench.context->Driver = std::make_shared<QtModalDriver>();
    bench.linked();
    bench.messages({L"OK"});
    QString connecting, missing, badAddress, badPort, notConnected;
    bool stillClosed = false;
    test::onModal(QStringLiteral("frmProtocolScan"), [&](QWidget& window) {
        LivePane* pane = openLivePane(window);
        ASSERT_NE(pane, nullptr);
        chooseLine(*pane, 0, QStringLiteral("/dev/ttyQXFB-none"));
        pane->Connect();
        // The port opens on the line's thread: Connect has already returned.
        connecting = pane->Status();
        waitFor([&] { return pane->Status() != connecting; });
        missing = pane->Status();
        stillClosed = !pane->Connected();
        chooseLine(*pane, 1, QStringLiteral("no port here"));
        pane->Connect();
        badAddress = pane->Status();
        chooseLine(*pane, 2, QStringLiteral("70000"));
        pane->Connect();
        badPort = pane->Status();
        pane->SendHex(QStringLiteral("02 03"));
        notConnected = pane->LogText().split(QLatin1Char('\n')).last();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.set->Edit(*bench.scan, bench.instances);
    EXPECT_EQ(connecting, QStringLiteral("Connecting..."));
    EXPECT_EQ(missing, QStringLiteral("cannot open /dev/ttyQXFB-none: No such file or directory"));
    EXPECT_TRUE(stillClosed);
    EXPECT_TRUE(badAddress.startsWith(QStringLiteral("The device's address: "))) << badAddress.toStdString();
    EXPECT_EQ(badPort, QStringLiteral("The port to listen on is a whole number from 0 to 65535, not \"70000\"."));
    EXPECT_EQ(notConnected, QStringLiteral("Connect first."));
}

}  // namespace
}  // namespace qx
