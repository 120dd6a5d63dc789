#include "qt/wire_bytes.h"

#include <QRegularExpression>

#include "platform/host/host_services.h"
#include "runtime_model/scan_recognizer.h"

namespace qx {

namespace {

const char* const controlNames[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                      "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                      "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

QString textOf(uint8_t byte) {
    if (byte < 32) return QStringLiteral("<%1>").arg(QLatin1String(controlNames[byte]));
    if (byte < 127) return QString(QChar(byte));
    return QStringLiteral("<%1>").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
}

QString colourOf(model::ByteOrigin::Kind kind) {
    switch (kind) {
        case model::ByteOrigin::Start:
        case model::ByteOrigin::End:
        case model::ByteOrigin::ControlChar:
            return QStringLiteral("#ff0000;color:#ffffff");
        case model::ByteOrigin::Field:
            return QStringLiteral("#d4d0c8");
        case model::ByteOrigin::EndChecksum:
            return QStringLiteral("#c0c0ff");
        case model::ByteOrigin::Text:
            break;
    }
    return {};
}

QString span(const QString& content, model::ByteOrigin::Kind kind) {
    const QString colour = colourOf(kind);
    const QString escaped = content.toHtmlEscaped();
    return colour.isEmpty() ? escaped : QStringLiteral("<span style=\"background:%1\">%2</span>").arg(colour, escaped);
}

// The model counts messages from 1; the grid beside this pane counts its
// rows from 0, and so does everything the dialog says about a message.
QString inGridNumbers(const std::wstring& why) {
    static const QRegularExpression message(QStringLiteral("^message (\\d+)"));
    QString text = QString::fromStdWString(why);
    const QRegularExpressionMatch found = message.match(text);
    if (found.hasMatch())
        text.replace(0, found.capturedLength(), QStringLiteral("message %1").arg(found.captured(1).toInt() - 1));
    return text;
}

QString operandText(int32_t type, int32_t address) {
    return QString::fromStdWString(clsOperandTypeNames().GetName(type)) + QStringLiteral(" %1").arg(address);
}

}  // namespace

WireText wireText(std::span<const uint8_t> bytes, std::span<const model::ByteOrigin::Kind> kinds) {
    WireText out;
    // Bytes of one origin in a row share one span: a label lays out a few
    // runs, not a span for every byte.
    QString hexRun, textRun;
    auto runKind = model::ByteOrigin::Text;
    const auto closeRun = [&] {
        out.HexHtml += span(hexRun, runKind);
        out.TextHtml += span(textRun, runKind);
        hexRun.clear();
        textRun.clear();
    };
    for (size_t i = 0; i < bytes.size(); ++i) {
        const uint8_t byte = bytes[i];
        const auto kind = i < kinds.size() ? kinds[i] : model::ByteOrigin::Text;
        if (kind != runKind && !hexRun.isEmpty()) closeRun();
        runKind = kind;
        const QString hex = QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
        const QString separator = i ? QStringLiteral(" ") : QString();
        out.Hex += separator + hex;
        out.Text += textOf(byte);
        if (hexRun.isEmpty()) out.HexHtml += separator;
        hexRun += (hexRun.isEmpty() ? QString() : QStringLiteral(" ")) + hex;
        textRun += textOf(byte);
    }
    if (!hexRun.isEmpty()) closeRun();
    return out;
}

std::vector<model::ByteOrigin::Kind> sentKinds(const model::RenderedMessage& message) {
    std::vector<model::ByteOrigin::Kind> kinds;
    kinds.reserve(message.Origins.size());
    for (const model::ByteOrigin& origin : message.Origins) kinds.push_back(origin.What);
    return kinds;
}

std::vector<model::ByteOrigin::Kind> receivedKinds(std::span<const uint8_t> frame, const model::Recognition& got) {
    std::vector<model::ByteOrigin::Kind> kinds(frame.size(), model::ByteOrigin::Text);
    if (got.MessageNumber == 0) return kinds;
    for (size_t i = 0; i < frame.size(); ++i) {
        if (i < got.MessageBegin)
            kinds[i] = model::ByteOrigin::Start;
        else if (i >= got.MessageEnd)
            kinds[i] = model::ByteOrigin::End;
        else if (frame[i] < 32)
            kinds[i] = model::ByteOrigin::ControlChar;
    }
    for (const model::ReceivedField& field : got.Fields)
        for (size_t i = field.Offset; i < field.Offset + field.Length && i < frame.size(); ++i)
            kinds[i] = model::ByteOrigin::Field;
    return kinds;
}

QString decodedText(const model::Recognition& got) {
    QString line = QStringLiteral("message %1").arg(got.MessageNumber - 1);
    for (const model::ReceivedField& field : got.Fields)
        for (size_t i = 0; i < field.Values.size(); ++i)
            line += QStringLiteral(", %1 = %2")
                        .arg(operandText(field.OperandType, field.OperandAddress + static_cast<int32_t>(i)))
                        .arg(field.Values[i]);
    return line;
}

QStringList whyNotLines(const model::Recognition& got) {
    QStringList lines;
    for (const std::wstring& why : got.WhyNot) lines << inGridNumbers(why);
    return lines;
}

std::optional<std::vector<uint8_t>> hexBytes(const QString& text) {
    std::vector<uint8_t> bytes;
    int high = -1;
    for (const QChar c : text) {
        if (c.isSpace() || c == QLatin1Char(',') || c == QLatin1Char(':')) continue;
        bool ok = false;
        const int digit = QString(c).toInt(&ok, 16);
        if (!ok) return std::nullopt;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0) return std::nullopt;
    return bytes;
}


}  // namespace qx
