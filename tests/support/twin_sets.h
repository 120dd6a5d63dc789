// A Send set and its Scan twin: message n of both is "Rnnn," a signed
// number of five digits (MI 100 + n), ",", a second one (MI 400 + n), framed
// by STX and CR LF, so that every frame the Send set renders the Scan set
// takes, with numbers to check. For the link tests and the benchmarks; no
// GoogleTest in it.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::test {

inline void fillTwinSets(clsProtocolSendSrv& send, clsProtocolScanSrv& scan, int32_t messages) {
    const auto link = [](clsOperand& operand, int32_t address) {
        operand.OperandType(3);
        operand.OperandAddress(address);
        operand.IsNew(false);
    };
    const auto row = [](const std::wstring& fixed) {
        return fixed + std::wstring(clsProtocolMessage::MaxPositions - fixed.size(), L' ');
    };
    scan.MessageLengthValue(0);
    for (int32_t n = 1; n <= messages; ++n) {
        if (n > 1) {
            scan.AppendMessage();
            send.AppendMessage();
        }
        std::wstring tag = std::to_wstring(n);
        tag = L"R" + std::wstring(3 - tag.size(), L'0') + tag + L",";
        clsProtocolMessage& in = *scan.GetMessage(n);
        clsProtocolMessage& out = *send.GetMessage(n);
        in.MessageString(row(tag));
        out.MessageString(row(tag));
        for (int32_t k = 0; k < 2; ++k) {
            const int32_t at = 5 + 7 * k;
            auto field = std::make_shared<clsProtocolScanNumericVar>();
            field->StartPosition(at);
            field->BeforePoint(5);
            link(*field->LikedOperand(), 100 + 300 * k + n);
            in.AddVar(field);
            auto sent = std::make_shared<clsProtocolNumericVar>();
            sent->StartPosition(at);
            sent->BeforePoint(5);  // five digits and the sign: six positions
            sent->LeadingZeros(1);
            link(*sent->LikedOperand(), 100 + 300 * k + n);
            out.AddVar(sent);
            if (k == 0) {
                in.AddControlChar(at + 6, ',');
                out.AddControlChar(at + 6, ',');
            }
        }
    }
    scan.ScanSTXLength(1);
    scan.SetScanSTXValue(0, 0x02, false);
    scan.ScanETXLength(2);
    scan.SetScanETXValue(0, 0x0D, false);
    scan.SetScanETXValue(1, 0x0A, false);
    send.SendSTXLength(1);
    send.SetSendSTXValue(0, 0x02, false);
    send.SendETXLength(2);
    send.SetSendETXValue(0, 0x0D, false);
    send.SetSendETXValue(1, 0x0A, false);
}

// One frame of the twins: message n with its two numbers.
struct TwinFrame {
    int32_t Message = 0;
    int64_t First = 0, Second = 0;
};

inline std::vector<uint8_t> renderTwin(const clsProtocolSendSrv& send, const TwinFrame& frame) {
    model::OperandValues values;
    values.Set(3, 100 + frame.Message, frame.First);
    values.Set(3, 400 + frame.Message, frame.Second);
    static const model::ChecksumTable checksums = model::ChecksumTable::Default();
    return model::renderSendMessage(send, frame.Message, values, model::ModelClock{}, checksums).Bytes;
}

}  // namespace qx::test
