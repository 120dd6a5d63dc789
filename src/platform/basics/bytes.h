// Byte blocks and the one bounds-checked cursor through which every image is
// read and written. A read outside the block raises RuntimeError(9); a value
// that does not fit its byte or word raises RuntimeError(6).
#pragma once
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "platform/basics/runtime_error.h"

namespace qx {

using Bytes = std::vector<uint8_t>;

// Reads at absolute offsets, never past the end of the block it was given.
class ByteReader {
public:
    explicit ByteReader(const Bytes& data) : data_(data.data()), size_(data.size()) {}
    ByteReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    size_t size() const { return size_; }
    // Any signed offset is accepted: a negative one is as much out of range as one past the end.
    uint8_t u8(int64_t offset) const {
        check(offset, 1);
        return data_[offset];
    }
    uint16_t u16(int64_t offset) const {
        check(offset, 2);
        return static_cast<uint16_t>(data_[offset] | (data_[offset + 1] << 8));
    }
    int32_t i32(int64_t offset) const { return static_cast<int32_t>(u32(offset)); }
    uint32_t u32(int64_t offset) const {
        check(offset, 4);
        return static_cast<uint32_t>(data_[offset]) | (static_cast<uint32_t>(data_[offset + 1]) << 8) |
               (static_cast<uint32_t>(data_[offset + 2]) << 16) | (static_cast<uint32_t>(data_[offset + 3]) << 24);
    }
    // Bytes from offset up to, not including, the first byte 0, which must
    // come within maxLength bytes.
    Bytes untilZero(int64_t offset, size_t maxLength = std::numeric_limits<size_t>::max()) const;
    // The count bytes from offset, checked once as a whole.
    std::span<const uint8_t> block(int64_t offset, size_t count) const;

private:
    // size > length - offset, never offset + size > length, which could wrap.
    void check(int64_t offset, size_t count) const {
        if (offset < 0 || static_cast<uint64_t>(offset) > size_ || count > size_ - static_cast<size_t>(offset))
            raiseError(err::SubscriptOutOfRange);
    }
    const uint8_t* data_;
    size_t size_;
};

// Writes into a block that grows only where the image layout says it grows.
class ByteWriter {
public:
    explicit ByteWriter(Bytes& data) : data_(data) {}

    size_t size() const { return data_.size(); }
    // Room for an image of about this size, so that growing never moves it.
    void reserve(size_t capacity) { data_.reserve(capacity); }
    void grow(size_t count) { data_.resize(data_.size() + count, 0); }
    void u8(size_t offset, int64_t value) {
        const uint8_t b = checkedByte(value);
        check(offset, 1);
        data_[offset] = b;
    }
    void u16(size_t offset, int64_t value) { low16(offset, checkedWord(value)); }
    // Low 16 bits of any value, for fields the format cuts to a word.
    void low16(size_t offset, int64_t value) {
        check(offset, 2);
        data_[offset] = static_cast<uint8_t>(value & 0xFF);
        data_[offset + 1] = static_cast<uint8_t>((value >> 8) & 0xFF);
    }
    void i32(size_t offset, int32_t value) { u32(offset, static_cast<uint32_t>(value)); }
    void u32(size_t offset, uint32_t value) {
        check(offset, 4);
        for (size_t i = 0; i < 4; ++i) data_[offset + i] = static_cast<uint8_t>((value >> (8 * i)) & 0xFF);
    }
    void copy(size_t offset, const uint8_t* from, size_t count);
    void copy(size_t offset, const Bytes& from) { copy(offset, from.data(), from.size()); }
    // The count bytes from offset, checked once, for a caller that fills
    // them itself. Valid until the block grows.
    std::span<uint8_t> block(size_t offset, size_t count);

private:
    void check(size_t offset, size_t count) const {
        if (offset > data_.size() || count > data_.size() - offset) raiseError(err::SubscriptOutOfRange);
    }
    Bytes& data_;
};

}  // namespace qx
