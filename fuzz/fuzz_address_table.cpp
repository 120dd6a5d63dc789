// Fuzz target of the TCP/IP address table image (ParseAddressTableImage and
// BuildAddressTableImage). See image_round_trip.h for the input layout and
// the check; the settings byte changes nothing here.
// Beyond the round trip: the reader refuses exactly the images shorter than
// their count says, and what it reads is written with that count, each
// parameter keeping its address or value. A write of arbitrary bytes is not
// the input itself (any flag but 0 becomes 1, the used flag is recomputed),
// which is why the round trip starts from the first write.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "image_round_trip.h"
#include "tcpip/mdl_eth_protocol.h"

namespace {

using qx::Bytes;

// The free functions in the shape that roundTrip takes.
class AddressTable {
public:
    void BinaryData(const Bytes& image) { table_ = qx::ParseAddressTableImage(image); }
    Bytes BinaryData() const { return qx::BuildAddressTableImage(table_); }

private:
    std::vector<qx::EthAddress> table_;
};

size_t expectedSize(const Bytes& image) { return 2 + static_cast<size_t>(image[1]) * qx::eth::AddressRecordSize; }

// An operand keeps bytes 2 and 3, a constant bytes 2 to 5.
void checkParam(const Bytes& input, const Bytes& written, size_t at) {
    const bool linked = input[at] == 0;
    Bytes expected{static_cast<uint8_t>(linked ? 0 : 1), 0, input[at + 2], input[at + 3], 0, 0};
    if (!linked) {
        expected[4] = input[at + 4];
        expected[5] = input[at + 5];
    }
    if (!std::equal(expected.begin(), expected.end(), written.begin() + static_cast<std::ptrdiff_t>(at)))
        qx::fuzz::finding("a parameter was not written as it was read", written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::optional<Bytes> written = qx::fuzz::roundTrip<AddressTable>(data, size);
    if (size == 0) return 0;
    const Bytes input(data + 1, data + size);
    const bool complete = input.size() >= 2 && input.size() >= expectedSize(input);
    if (!written) {
        if (complete) qx::fuzz::finding("a complete address table was refused", input);
        return 0;
    }
    if (!complete) qx::fuzz::finding("an address table shorter than its count was read", input);
    // The host's own reading of the MIs agrees with the parse, and a move
    // of one of them touches its address bytes and nothing else.
    const std::vector<qx::AddressTableOperand> operands = qx::AddressTableOperands(input);
    for (const qx::AddressTableOperand& operand : operands) {
        Bytes moved = input;
        const uint16_t to = static_cast<uint16_t>(operand.Address ^ 0x5A5A);
        const int32_t count = qx::ReplaceAddressTableOperand(moved, operand.Address, to);
        if (count < 1) qx::fuzz::finding("a listed MI was not found again by the move", input);
        for (size_t i = 0; i < input.size(); ++i) {
            const size_t at = i < 2 ? 0 : (i - 2) % qx::eth::AddressRecordSize;
            const bool addressByte =
                (at == qx::eth::RecordIpAddressOffset + 2 || at == qx::eth::RecordIpAddressOffset + 3 ||
                 at == qx::eth::RecordPortOffset + 2 || at == qx::eth::RecordPortOffset + 3);
            if (moved[i] != input[i] && (i < 2 || !addressByte || i >= expectedSize(input)))
                qx::fuzz::finding("a move changed a byte that is no operand's address", input);
        }
    }
    if (operands.empty() && input.size() > 0) {
        Bytes unchanged = input;
        if (qx::ReplaceAddressTableOperand(unchanged, 0, 1) != 0 || unchanged != input)
            qx::fuzz::finding("a move changed a table that names no MI", input);
    }
    if (written->size() != expectedSize(input) || (*written)[0] != qx::eth::AddressTableVersion ||
        (*written)[1] != input[1])
        qx::fuzz::finding("address table not written with its version and count", *written);
    for (size_t at = 2; at < written->size(); at += qx::eth::AddressRecordSize) {
        checkParam(input, *written, at + 2);
        checkParam(input, *written, at + 2 + qx::eth::AddressParamSize);
    }
    return 0;
}
