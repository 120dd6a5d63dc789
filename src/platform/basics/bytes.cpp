#include "platform/basics/bytes.h"

#include <cstring>

#include "platform/basics/runtime_error.h"

namespace qx {

void ByteReader::check(int64_t offset, size_t count) const {
    if (offset < 0 || static_cast<uint64_t>(offset) > size_ || count > size_ - static_cast<size_t>(offset))
        raiseError(err::SubscriptOutOfRange);
}

uint8_t ByteReader::u8(int64_t offset) const {
    check(offset, 1);
    return data_[offset];
}

uint16_t ByteReader::u16(int64_t offset) const {
    check(offset, 2);
    return static_cast<uint16_t>(data_[offset] | (data_[offset + 1] << 8));
}

uint32_t ByteReader::u32(int64_t offset) const {
    check(offset, 4);
    return static_cast<uint32_t>(data_[offset]) | (static_cast<uint32_t>(data_[offset + 1]) << 8) |
           (static_cast<uint32_t>(data_[offset + 2]) << 16) | (static_cast<uint32_t>(data_[offset + 3]) << 24);
}

int32_t ByteReader::i32(int64_t offset) const { return static_cast<int32_t>(u32(offset)); }

Bytes ByteReader::untilZero(int64_t offset, size_t maxLength) const {
    Bytes out;
    for (int64_t at = offset;; ++at) {
        uint8_t b = u8(at);
        if (b == 0) return out;
        if (out.size() == maxLength) raiseError(err::SubscriptOutOfRange);
        out.push_back(b);
    }
}

void ByteWriter::check(size_t offset, size_t count) const {
    if (offset > data_.size() || count > data_.size() - offset) raiseError(err::SubscriptOutOfRange);
}

void ByteWriter::u8(size_t offset, int64_t value) {
    uint8_t b = checkedByte(value);
    check(offset, 1);
    data_[offset] = b;
}

void ByteWriter::u16(size_t offset, int64_t value) { low16(offset, checkedWord(value)); }

void ByteWriter::low16(size_t offset, int64_t value) {
    check(offset, 2);
    data_[offset] = static_cast<uint8_t>(value & 0xFF);
    data_[offset + 1] = static_cast<uint8_t>((value >> 8) & 0xFF);
}

void ByteWriter::u32(size_t offset, uint32_t value) {
    check(offset, 4);
    for (int i = 0; i < 4; ++i) data_[offset + i] = static_cast<uint8_t>((value >> (8 * i)) & 0xFF);
}

void ByteWriter::i32(size_t offset, int32_t value) { u32(offset, static_cast<uint32_t>(value)); }

void ByteWriter::copy(size_t offset, const uint8_t* from, size_t count) {
    check(offset, count);
    if (count) std::memcpy(data_.data() + offset, from, count);
}

}  // namespace qx
