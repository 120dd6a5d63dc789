#include "support/image_forger.h"

#include <algorithm>

namespace qx::test {

void ImageForger::reach(size_t end) {
    if (bytes_.size() < end) bytes_.resize(end, 0);
}

ImageForger& ImageForger::u8(size_t offset, uint8_t value) {
    reach(offset + 1);
    bytes_[offset] = value;
    return *this;
}

ImageForger& ImageForger::u16(size_t offset, uint16_t value) {
    reach(offset + 2);
    bytes_[offset] = static_cast<uint8_t>(value & 0xFF);
    bytes_[offset + 1] = static_cast<uint8_t>(value >> 8);
    return *this;
}

ImageForger& ImageForger::bytes(size_t offset, std::initializer_list<uint8_t> values) {
    reach(offset + values.size());
    std::copy(values.begin(), values.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    return *this;
}

Bytes ImageForger::truncatedTo(size_t count) const {
    return Bytes(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(std::min(count, bytes_.size())));
}

uint32_t ForgeRandom::next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_;
}

}  // namespace qx::test
