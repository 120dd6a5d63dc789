// A pane under the message grid of a Scan dialog that tests the messages
// against bytes a device really sent: pasted as hexadecimal digits, or read
// from a capture file. The runtime model cuts them into frames by the
// dialog's terminator and tells frame by frame which message took it and
// what each field received, or why none did; the first message that took a
// frame becomes the grid's current row.
#pragma once
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QWidget>
#include <functional>

namespace qx {

class Form;
class clsProtocolScanSrv;

class CaptureTestPane : public QWidget {
    Q_OBJECT

public:
    struct Target {
        // nullptr while there is no set to test.
        std::function<const clsProtocolScanSrv*()> Set;
        // Makes message n (1-based) the grid's current row.
        std::function<void(int32_t)> ShowMessage;
    };
    CaptureTestPane(Target target, QWidget* parent = nullptr);

    // Tests the bytes of the hexadecimal text; false, with the reason
    // shown, when the text is not pairs of hexadecimal digits.
    bool TestHex(const QString& hex);
    // Tests the bytes of a file.
    bool TestFile(const QString& path);
    // The lines of the last result, as shown.
    QString ResultText() const { return result_->toPlainText(); }

protected:
    // Enter in the bytes runs the test and goes no further: in the dialog
    // it is the form's key.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void test(const std::vector<uint8_t>& capture);

    Target target_;
    QLineEdit* bytes_;
    QPushButton* run_;
    QPushButton* file_;
    QPlainTextEdit* result_;
};

// Adds the pane to the window of a Scan dialog (serial or TCP/IP), under its
// message grid; other forms get none.
void addCaptureTest(Form& form, QWidget& window);

}  // namespace qx
