#include "platform/basics/bytes.h"

#include <cstring>

#include "platform/basics/runtime_error.h"

namespace qx {

Bytes ByteReader::untilZero(int64_t offset, size_t maxLength) const {
    check(offset, 0);
    const uint8_t* from = data_ + offset;
    const size_t available = size_ - static_cast<size_t>(offset);
    // The zero may stand right behind maxLength bytes.
    const size_t searched = maxLength < available ? maxLength + 1 : available;
    // No end within the block, or none within maxLength bytes.
    const auto* zero = searched ? static_cast<const uint8_t*>(std::memchr(from, 0, searched)) : nullptr;
    if (!zero) raiseError(err::SubscriptOutOfRange);
    return Bytes(from, zero);
}

std::span<const uint8_t> ByteReader::block(int64_t offset, size_t count) const {
    check(offset, count);
    return {data_ + offset, count};
}

std::span<uint8_t> ByteWriter::block(size_t offset, size_t count) {
    check(offset, count);
    return {data_.data() + offset, count};
}

void ByteWriter::copy(size_t offset, const uint8_t* from, size_t count) {
    check(offset, count);
    if (count) std::memcpy(data_.data() + offset, from, count);
}

}  // namespace qx
