// A test-side forger of Send and Scan images: it writes bytes where a test
// says, with no knowledge of the layout, so that tests can build broken,
// short and lying images that no writer of the library would make.
#pragma once
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>

#include "platform/basics/bytes.h"

namespace qx::test {

class ImageForger {
public:
    explicit ImageForger(size_t size) : bytes_(size, 0) {}
    explicit ImageForger(Bytes bytes) : bytes_(std::move(bytes)) {}

    // The block grows when a write lands behind its end.
    ImageForger& u8(size_t offset, uint8_t value);
    ImageForger& u16(size_t offset, uint16_t value);
    ImageForger& bytes(size_t offset, std::initializer_list<uint8_t> values);

    const Bytes& image() const { return bytes_; }
    // The first count bytes, as an image cut short would hold them.
    Bytes truncatedTo(size_t count) const;

private:
    void reach(size_t end);
    Bytes bytes_;
};

// A small deterministic generator for corruption tests (xorshift), so that
// every run forges the same images.
class ForgeRandom {
public:
    explicit ForgeRandom(uint32_t seed) : state_(seed ? seed : 1u) {}
    uint32_t next();
    uint32_t below(uint32_t bound) { return next() % bound; }

private:
    uint32_t state_;
};

}  // namespace qx::test
