// Bytes on the wire as the panes of the view layer show them: in
// hexadecimal and as text with control characters named, each byte in the
// colour of what made it (the frame and control characters red as in the
// message grid, a field grey, a checksum light blue).
#pragma once
#include <QString>
#include <QStringList>
#include <optional>
#include <cstdint>
#include <span>
#include <vector>

#include "runtime_model/send_renderer.h"

namespace qx {

namespace model {
struct Recognition;
}

// A capture file larger than this is not read: it is no test of a message set.
inline constexpr qint64 MaxCaptureBytes = 16 << 20;

struct WireText {
    QString Hex;   // "02 57 0D"
    QString Text;  // "<STX>W<CR>"
    // The same as rich text, bytes of one kind in a row in one span.
    QString HexHtml;
    QString TextHtml;
};

// kinds holds one kind a byte; without kinds every byte is fixed text.
WireText wireText(std::span<const uint8_t> bytes, std::span<const model::ByteOrigin::Kind> kinds = {});

// What made each byte of a rendered message.
std::vector<model::ByteOrigin::Kind> sentKinds(const model::RenderedMessage& message);

// What made each byte of a received frame, as its recognition found it: the
// start and end characters, the fields, control characters and fixed text.
// A frame that matched no message is all fixed text.
std::vector<model::ByteOrigin::Kind> receivedKinds(std::span<const uint8_t> frame, const model::Recognition& got);

// A received frame in the words of the dialog, whose grid counts messages
// from 0: "message 1, MI 12 = -4250, MI 13 = 2" (a number's decimal places
// go to its decimal-point operand); for a frame that matched nothing, why
// not, message by message ("message 0, position 1: ...").
QString decodedText(const model::Recognition& got);
QStringList whyNotLines(const model::Recognition& got);

// Pairs of hexadecimal digits ("02 57 0d", blanks, commas and colons
// between them allowed); nothing for any other text.
std::optional<std::vector<uint8_t>> hexBytes(const QString& text);

}  // namespace qx
