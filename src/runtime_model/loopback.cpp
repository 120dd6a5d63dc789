#include "runtime_model/loopback.h"

#include <algorithm>
#include <cwchar>

#include "message/protocol_binary_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "runtime_model/scan_recognizer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::model {

namespace {

constexpr double BitsPerCharacter = 11.0;

std::wstring hexByte(uint8_t byte) {
    static const wchar_t* const hex = L"0123456789ABCDEF";
    return std::wstring{hex[byte >> 4], hex[byte & 0xF]};
}

// Fields whose bytes are free, so that any byte, the end character too,
// can stand in them: streams, and binary texts that hold the character.
template <class Message, class Visit>
void eachFreeField(const Message& message, Visit visit) {
    if (message.IsEmpty()) return;
    std::vector<SegmentSpan> spans;
    message.segmentSpans(spans);
    for (const SegmentSpan& span : spans) {
        if (span.SegmentKind != MessageSegment::VarKind) continue;
        visit(span);
    }
}

void warnEndInsideFields(const clsProtocolSendSrv& send, const clsProtocolScanSrv& scan,
                         std::vector<std::wstring>& warnings) {
    if (scan.ScanETXLength() == 0) return;
    const uint8_t end = scan.ScanETXChars()[0].Value;
    for (int32_t number = 1; number <= send.NumberOfMessages(); ++number)
        eachFreeField(*send.GetMessage(number), [&](const SegmentSpan& span) {
            const std::wstring where = L"Send message " + std::to_wstring(number) + L", field at position " +
                                       std::to_wstring(span.StartPosition) + L": ";
            if (auto* numeric = dynamic_cast<clsProtocolNumericVar*>(span.Var.get())) {
                if (numeric->StreamForm() == 1)
                    warnings.push_back(where + L"a stream can carry the end character " + hexByte(end) +
                                       L", which ends the frame early");
            } else if (auto* binary = dynamic_cast<clsProtocolBinaryVar*>(span.Var.get())) {
                for (const std::wstring& text : {binary->TextFor0(), binary->TextFor1()})
                    if (text.find(static_cast<wchar_t>(end)) != std::wstring::npos)
                        warnings.push_back(where + L"the text \"" + text + L"\" holds the end character " +
                                           hexByte(end));
            }
        });
    for (int32_t number = 1; number <= scan.NumberOfMessages(); ++number)
        eachFreeField(*scan.GetMessage(number), [&](const SegmentSpan& span) {
            auto* numeric = dynamic_cast<clsProtocolScanNumericVar*>(span.Var.get());
            if (numeric && numeric->StreamForm() == 1)
                warnings.push_back(L"Scan message " + std::to_wstring(number) + L", field at position " +
                                   std::to_wstring(span.StartPosition) + L": a stream can receive the end character " +
                                   hexByte(end) + L", which ends the frame early");
        });
}

}  // namespace

bool LoopbackReport::Clean() const {
    return Warnings.empty() && std::all_of(Lines.begin(), Lines.end(),
                                           [](const LoopbackLine& line) { return line.ScanMessages.size() == 1; });
}

LoopbackReport loopback(const clsProtocolSendSrv& send, const clsProtocolScanSrv& scan, int32_t baud,
                        const OperandValues& values, const ModelClock& clock, const ChecksumTable& checksums) {
    LoopbackReport report;
    const ScanMatcher matcher(scan, checksums);
    for (int32_t number = 1; number <= send.NumberOfMessages(); ++number) {
        if (send.GetMessage(number)->IsEmpty()) continue;
        LoopbackLine line;
        line.SendMessage = number;
        line.Bytes = renderSendMessage(send, number, values, clock, checksums).Bytes;
        line.ScanMessages = matcher.AllMatches(line.Bytes);
        if (line.ScanMessages.empty()) {
            line.WhyNot = matcher.Recognize(line.Bytes).WhyNot;
            report.Warnings.push_back(L"Send message " + std::to_wstring(number) + L" is taken by no Scan message");
        } else if (line.ScanMessages.size() > 1) {
            std::wstring which;
            for (int32_t scanNumber : line.ScanMessages)
                which += (which.empty() ? L"" : L", ") + std::to_wstring(scanNumber);
            report.Warnings.push_back(L"Send message " + std::to_wstring(number) +
                                      L" is taken by more than one Scan message: " + which +
                                      L"; the first of them wins");
        }
        report.Lines.push_back(std::move(line));
    }
    warnEndInsideFields(send, scan, report.Warnings);
    if (scan.ScanETXLength() == 0 && scan.MessageLengthValue() <= 0 && scan.SilenceTimeValue() > 0 && baud > 0) {
        const double limit = 1.5 * BitsPerCharacter * 1000.0 / baud;
        if (scan.SilenceTimeValue() < limit) {
            wchar_t ms[32];
            std::swprintf(ms, 32, L"%.2f", limit);
            report.Warnings.push_back(L"a silence of " + std::to_wstring(scan.SilenceTimeValue()) +
                                      L" ms is shorter than 1.5 characters at " + std::to_wstring(baud) + L" baud (" +
                                      ms + L" ms): a pause inside a frame can end it");
        }
    }
    return report;
}

}  // namespace qx::model
