// Byte blocks and the one bounds-checked cursor through which every image is
// read and written. A read outside the block raises RuntimeError(9); a value
// that does not fit its byte or word raises RuntimeError(6).
#pragma once
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace qx {

using Bytes = std::vector<uint8_t>;

// Reads at absolute offsets, never past the end of the block it was given.
class ByteReader {
public:
    explicit ByteReader(const Bytes& data) : data_(data.data()), size_(data.size()) {}
    ByteReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    size_t size() const { return size_; }
    // Any signed offset is accepted: a negative one is as much out of range as one past the end.
    uint8_t u8(int64_t offset) const;
    uint16_t u16(int64_t offset) const;
    int32_t i32(int64_t offset) const;
    uint32_t u32(int64_t offset) const;
    // Bytes from offset up to, not including, the first byte 0, which must
    // come within maxLength bytes.
    Bytes untilZero(int64_t offset, size_t maxLength = std::numeric_limits<size_t>::max()) const;

private:
    void check(int64_t offset, size_t count) const;
    const uint8_t* data_;
    size_t size_;
};

// Writes into a block that grows only where the image layout says it grows.
class ByteWriter {
public:
    explicit ByteWriter(Bytes& data) : data_(data) {}

    size_t size() const { return data_.size(); }
    void grow(size_t count) { data_.resize(data_.size() + count, 0); }
    void u8(size_t offset, int64_t value);
    void u16(size_t offset, int64_t value);
    // Low 16 bits of any value, for fields the format cuts to a word.
    void low16(size_t offset, int64_t value);
    void i32(size_t offset, int32_t value);
    void u32(size_t offset, uint32_t value);
    void copy(size_t offset, const uint8_t* from, size_t count);
    void copy(size_t offset, const Bytes& from) { copy(offset, from.data(), from.size()); }

private:
    void check(size_t offset, size_t count) const;
    Bytes& data_;
};

}  // namespace qx
