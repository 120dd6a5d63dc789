#include "qt/capture_test.h"

#include <QBoxLayout>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QKeyEvent>
#include <optional>
#include <span>
#include <string>

#include "editors/scan_message_dialog.h"
#include "platform/basics/runtime_error.h"
#include "qt/view_checksums.h"
#include "qt/wire_bytes.h"
#include "runtime_model/scan_recognizer.h"
#include "sets/scan_set.h"

namespace qx {

CaptureTestPane::CaptureTestPane(Target target, QWidget* parent)
    : QWidget(parent),
      target_(std::move(target)),
      bytes_(new QLineEdit(this)),
      run_(new QPushButton(tr("Test"), this)),
      file_(new QPushButton(tr("Test a capture file..."), this)),
      result_(new QPlainTextEdit(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Test against captured bytes (hex):"), this));
    row->addWidget(bytes_, 1);
    row->addWidget(run_);
    row->addWidget(file_);
    layout->addLayout(row);
    layout->addWidget(result_);
    bytes_->setPlaceholderText(QStringLiteral("02 57 0D 0A 03"));
    // A few lines in sight, the rest behind a scroll bar: the grid keeps its room.
    result_->setReadOnly(true);
    result_->setMaximumHeight(result_->fontMetrics().lineSpacing() * 5 + 10);
    bytes_->installEventFilter(this);
    // Enter is the form's key: these buttons never press themselves on it.
    for (QPushButton* button : {run_, file_}) button->setAutoDefault(false);
    connect(run_, &QPushButton::clicked, this, [this] { TestHex(bytes_->text()); });
    connect(file_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Captured bytes"));
        if (!path.isEmpty()) TestFile(path);
    });
}

bool CaptureTestPane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == bytes_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            TestHex(bytes_->text());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

bool CaptureTestPane::TestHex(const QString& hex) {
    const std::optional<std::vector<uint8_t>> bytes = hexBytes(hex);
    if (!bytes) {
        result_->setPlainText(tr("Pairs of hexadecimal digits are needed, as in 02 57 0D 0A 03."));
        return false;
    }
    test(*bytes);
    return true;
}

bool CaptureTestPane::TestFile(const QString& path) {
    QFile file(path);
    if (file.size() > MaxCaptureBytes) {
        result_->setPlainText(
            tr("%1 has %2 bytes, more than the %3 a test reads.").arg(path).arg(file.size()).arg(MaxCaptureBytes));
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        result_->setPlainText(tr("%1 cannot be read: %2").arg(path, file.errorString()));
        return false;
    }
    const QByteArray data = file.readAll();
    test(std::vector<uint8_t>(data.begin(), data.end()));
    return true;
}

void CaptureTestPane::test(const std::vector<uint8_t>& capture) {
    const clsProtocolScanSrv* set = target_.Set();
    if (!set) {
        result_->setPlainText(tr("No Scan to test."));
        return;
    }
    QStringList lines;
    int32_t firstMatch = 0;
    try {
        const model::ChecksumTable& table = viewChecksumTable();
        const model::ScanMatcher matcher(*set, table);
        size_t leftOver = 0;
        const std::vector<model::FrameSpan> frames = model::splitFrames(*set, capture, &leftOver);
        for (const model::FrameSpan& frame : frames) {
            const model::Recognition got = matcher.Recognize(std::span(capture).subspan(frame.Offset, frame.Length));
            if (got.MessageNumber == 0) {
                lines << tr("Frame at byte %1: no message.").arg(frame.Offset);
                for (const QString& why : whyNotLines(got)) lines << QStringLiteral("    ") + why;
                continue;
            }
            if (firstMatch == 0) firstMatch = got.MessageNumber;
            lines << tr("Frame at byte %1: %2").arg(frame.Offset).arg(decodedText(got));
        }
        if (frames.empty()) lines << tr("No complete frame in %1 bytes.").arg(capture.size());
        if (leftOver) lines << tr("%1 bytes at the end make no complete frame.").arg(leftOver);
    } catch (const RuntimeError& e) {
        lines << tr("The Scan cannot be tested: %1").arg(QString::fromStdWString(e.Description()));
    }
    result_->setPlainText(lines.join(QLatin1Char('\n')));
    if (firstMatch) target_.ShowMessage(firstMatch);
}

void addCaptureTest(Form& form, QWidget& window) {
    auto* dialog = dynamic_cast<ScanMessageDialog*>(&form);
    if (!dialog) return;
    auto* messages = window.findChild<QGroupBox*>(QStringLiteral("SSPanel1"));
    auto* layout = messages ? qobject_cast<QBoxLayout*>(messages->layout()) : nullptr;
    if (!layout) return;
    CaptureTestPane::Target target{[dialog]() -> const clsProtocolScanSrv* {
                                       try {
                                           return &dialog->scanSet();
                                       } catch (const RuntimeError&) {
                                           return nullptr;
                                       }
                                   },
                                   [dialog](int32_t message) {
                                       Grid& grid = dialog->grid();
                                       grid.UserMoveTo(message - 1, grid.Col());
                                   }};
    layout->addWidget(new CaptureTestPane(std::move(target), messages));
}

}  // namespace qx
