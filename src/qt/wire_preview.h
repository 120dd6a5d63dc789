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
#include <functional>
#include <vector>

namespace qx {

class Control;
class Form;
class clsProtocolSendSrv;

class WirePreview : public QWidget {
    Q_OBJECT

public:
    // The set and the current message number (1-based) are asked for at
    // each rendering; set nullptr while there is none. Every change of a
    // watched control renders again. The controls outlive the pane.
    struct Source {
        std::function<const clsProtocolSendSrv*()> Set;
        std::function<int32_t()> Message;
    };
    WirePreview(Source source, const std::vector<Control*>& watched, QWidget* parent = nullptr);
    ~WirePreview() override;

    // Renders the current message now.
    void Refresh();
    // What the pane shows, without colours: "02 57 0D 03" and "<STX>W<CR><ETX>".
    QString HexText() const { return hex_; }
    QString PlainText() const { return text_; }
    // "Message 1 on the wire, 11 bytes, every operand 0:", the message
    // counted from 0 as the grid counts its rows.
    QString Title() const { return title_->text(); }

private:
    void schedule();

    Source source_;
    std::vector<std::pair<Control*, int32_t>> subscriptions_;
    bool pending_ = false;
    QLabel* title_;
    QLabel* bytes_;
    QString hex_, text_;
};

// Adds the pane to the window of a Send dialog (serial or TCP/IP), under its
// message grid; other forms get none. The pane belongs to the window.
void addWirePreview(Form& form, QWidget& window);

}  // namespace qx
