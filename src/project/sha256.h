// SHA-256 (FIPS 180-4) in plain C++, for the checksums of the download
// bundle: a host checks each file it downloads against its manifest.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace qx {

// Incremental form: feed any number of blocks, then take the digest once.
// After digest() the object starts over, empty.
class Sha256 {
public:
    Sha256() { reset(); }

    void update(const uint8_t* data, size_t size);
    std::array<uint8_t, 32> digest();
    // The digest as 64 lowercase hexadecimal digits.
    std::string hexDigest();
    void reset();

private:
    void compress(const uint8_t* block);

    std::array<uint32_t, 8> state_{};
    std::array<uint8_t, 64> buffer_{};
    size_t buffered_ = 0;
    uint64_t length_ = 0;  // bytes fed so far
};

// The SHA-256 of the bytes, as 64 lowercase hexadecimal digits.
std::string sha256Hex(const uint8_t* data, size_t size);

}  // namespace qx
