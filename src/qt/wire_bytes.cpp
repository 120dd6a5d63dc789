#include "qt/wire_bytes.h"

#include <QRegularExpression>

#include "platform/host/host_services.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/wire_text.h"

namespace qx {

namespace {

QString textOf(uint8_t byte) { return QString::fromStdString(model::byteText(byte)); }

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
        const QString hex = QString::fromStdString(model::hexLine(std::span(&byte, 1)));
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
    for (const model::ReceivedField& field : got.Fields) {
        for (size_t i = 0; i < field.Values.size(); ++i)
            line += QStringLiteral(", %1 = %2")
                        .arg(operandText(field.OperandType, field.OperandAddress + static_cast<int32_t>(i)))
                        .arg(field.Values[i]);
        if (field.HasDecimalPlaces)
            line += QStringLiteral(", %1 = %2")
                        .arg(operandText(field.DecimalPointType, field.DecimalPointAddress))
                        .arg(field.DecimalPlaces);
    }
    return line;
}

QStringList whyNotLines(const model::Recognition& got) {
    QStringList lines;
    for (const std::wstring& why : got.WhyNot) lines << inGridNumbers(why);
    return lines;
}

std::optional<std::vector<uint8_t>> hexBytes(const QString& text) { return model::parseHex(text.toStdString()); }

}  // namespace qx
