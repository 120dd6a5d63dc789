// A Send set held against a Scan set without a line between them: every
// Send message, rendered with sample values, goes through the Scan's
// recognition, and what would go wrong on a real line is warned about:
// messages no Scan message takes, a frame that two Scan messages take, an
// end character that a stream or a binary text can carry inside a message,
// and a silence too short to tell two frames apart at the line's speed.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "runtime_model/checksum_catalogue.h"
#include "runtime_model/send_renderer.h"

namespace qx {
class clsProtocolSendSrv;
class clsProtocolScanSrv;
}  // namespace qx

namespace qx::model {

struct LoopbackLine {
    int32_t SendMessage = 0;
    std::vector<uint8_t> Bytes;
    // Every Scan message that takes the frame, in order; empty when none.
    std::vector<int32_t> ScanMessages;
    // Without a match, why not, message by message.
    std::vector<std::wstring> WhyNot;
};

struct LoopbackReport {
    std::vector<LoopbackLine> Lines;
    std::vector<std::wstring> Warnings;
    // True when every Send message is taken by exactly one Scan message and
    // nothing is warned about.
    bool Clean() const;
};

// The line's speed matters only for a Scan that ends its messages by a
// silence: a character takes 11 bits (start, eight data, parity, stop).
LoopbackReport loopback(const clsProtocolSendSrv& send, const clsProtocolScanSrv& scan, int32_t baud,
                        const OperandValues& values, const ModelClock& clock, const ChecksumTable& checksums);

}  // namespace qx::model
