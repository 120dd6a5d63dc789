// The model's rendering of a Send message to the bytes on the wire, from the
// operand values and the clock the caller gives. The conversions are the
// controller's; the model reads the settings as their names say and keeps
// its choices in one place (send_renderer.cpp), each stated where it is
// made, so that a capture from a real controller can correct them.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "runtime_model/checksum_catalogue.h"

namespace qx {
class clsProtocolSendSrv;
}

namespace qx::model {

// The values of memory operands by type and address; one not given is 0.
class OperandValues {
public:
    void Set(int32_t type, int32_t address, int64_t value) { values_[{type, address}] = value; }
    int64_t Get(int32_t type, int32_t address) const {
        auto at = values_.find({type, address});
        return at == values_.end() ? 0 : at->second;
    }

private:
    std::map<std::pair<int32_t, int32_t>, int64_t> values_;
};

// The controller's clock at the moment of sending. Weekday 0 is Sunday.
struct ModelClock {
    int32_t Year = 2000, Month = 1, Day = 1, Weekday = 6;
    int32_t Hour = 0, Minute = 0, Second = 0;
};

// What produced a byte, for showing each byte in its field's colour.
struct ByteOrigin {
    enum Kind { Start, Text, ControlChar, Field, End, EndChecksum };
    Kind What = Text;
    // The message position the byte stands for; -1 for the frame.
    int32_t Position = -1;
};

struct RenderedMessage {
    std::vector<uint8_t> Bytes;
    std::vector<ByteOrigin> Origins;  // one per byte
    // What the model had to assume (a list index with no text, a number too
    // wide for its digits); empty when nothing.
    std::vector<std::wstring> Notes;
};

// Renders message number (1-based) of the set with its frame: the start
// characters, the message, and, when the set has end characters, those and
// the end-of-message checksum in the order its end of message names. A set
// without start or end characters (every TCP/IP set) sends the message
// alone. A message number out of range is RuntimeError(9).
RenderedMessage renderSendMessage(const clsProtocolSendSrv& set, int32_t messageNumber, const OperandValues& values,
                                  const ModelClock& clock, const ChecksumTable& checksums);

}  // namespace qx::model
