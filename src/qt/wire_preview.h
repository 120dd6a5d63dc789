// A pane under the message grid of a Send dialog: the bytes that the
// current message puts on the wire, as the runtime model renders them with
// sample values (every operand 0, the clock at 2000-01-01 00:00:00), in
// hexadecimal and as text with control characters named, each byte in the
// colour of what made it: the frame and control characters red as in the
// grid, a field grey, a checksum light blue. It follows every change of the
// dialog, coalesced into one rendering per turn of the event loop.
#pragma once
#include <QLabel>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <vector>

namespace qx {

class Form;
class SendMessageDialog;

class WirePreview : public QWidget {
    Q_OBJECT

public:
    WirePreview(SendMessageDialog& dialog, QWidget* parent = nullptr);
    ~WirePreview() override;

    // Renders the current message now.
    void Refresh();
    // What the pane shows, without colours: "02 57 0D 03" and "<STX>W<CR><ETX>".
    QString HexText() const { return hex_; }
    QString PlainText() const { return text_; }

private:
    void schedule();

    SendMessageDialog& dialog_;
    std::vector<int32_t> tokens_;
    bool pending_ = false;
    QLabel* title_;
    QLabel* bytes_;
    QString hex_, text_;
};

// Adds the pane to the window of a Send dialog (serial or TCP/IP), under its
// message grid; other forms get none. The pane belongs to the window.
void addWirePreview(Form& form, QWidget& window);

}  // namespace qx
