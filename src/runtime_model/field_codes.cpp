#include "runtime_model/field_codes.h"

#include <algorithm>
#include <string>

#include "message/protocol_cs_var.h"

namespace qx::model {

StreamElement streamElementOf(int32_t copyBytesFormat) {
    switch (copyBytesFormat) {
        case 1:
            return {2, false};
        case 3:
            return {3, false};
        case 2:
            return {4, false};
        case 5:
            return {4, true};
        default:
            return {1, false};
    }
}

void appendElement(const StreamElement& element, int64_t value, std::vector<uint8_t>& out) {
    const auto bits = static_cast<uint64_t>(value);
    for (int32_t i = 0; i < element.Bytes; ++i) {
        const int32_t byte = element.LowByteFirst ? i : element.Bytes - 1 - i;
        out.push_back(static_cast<uint8_t>(bits >> (8 * byte)));
    }
}

int64_t readElement(const StreamElement& element, std::span<const uint8_t> bytes) {
    uint64_t value = 0;
    for (int32_t i = 0; i < element.Bytes && i < static_cast<int32_t>(bytes.size()); ++i) {
        const int32_t byte = element.LowByteFirst ? i : element.Bytes - 1 - i;
        value |= static_cast<uint64_t>(bytes[static_cast<size_t>(i)]) << (8 * byte);
    }
    return static_cast<int64_t>(value);
}

uint64_t checksumValue(const clsProtocolCSVar& checksum, std::span<const uint8_t> frame, size_t afterStart,
                       const ChecksumTable& table) {
    size_t from =
        (checksum.STXInCS() ? 0 : afterStart) + static_cast<size_t>(std::max(0, checksum.OffsetFromForward()));
    const size_t back = static_cast<size_t>(std::max(0, checksum.OffsetTillBackwards()));
    const size_t to = back > frame.size() ? 0 : frame.size() - back;
    uint64_t value = from < to ? table.Compute(checksum.CalculationType(), frame.subspan(from, to - from)) : 0;
    if (checksum.ModulusType() == 1) value &= 0xFF;
    if (checksum.ModulusType() == 2) value &= 0xFFFF;
    if (checksum.SpecialAddition() && static_cast<int64_t>(value) >= checksum.SA_FromValue() &&
        static_cast<int64_t>(value) <= checksum.SA_ToValue())
        value += static_cast<uint64_t>(checksum.SA_AddedValue());
    return value;
}

size_t checksumWidth(const clsProtocolCSVar& checksum) { return static_cast<size_t>(std::max(1, checksum.CSLength())); }

std::vector<uint8_t> checksumBytes(const clsProtocolCSVar& checksum, uint64_t value, const ChecksumTable& table) {
    const size_t length = checksumWidth(checksum);
    std::vector<uint8_t> out;
    if (checksum.FormatView() == 2) {
        const StreamElement order{static_cast<int32_t>(std::min<size_t>(length, 8)),
                                  table.Definition(checksum.CalculationType()).LowByteFirst};
        // Bytes beyond eight are zeros in front of the value.
        out.assign(length - static_cast<size_t>(order.Bytes), 0);
        appendElement(order, static_cast<int64_t>(value), out);
        return out;
    }
    const uint64_t base = checksum.FormatView() == 1 ? 16 : 10;
    std::string text;
    do {
        text.insert(text.begin(), "0123456789ABCDEF"[value % base]);
        value /= base;
    } while (value != 0);
    if (text.size() > length) text.erase(0, text.size() - length);
    text.insert(0, length - text.size(), '0');
    return {text.begin(), text.end()};
}

}  // namespace qx::model
