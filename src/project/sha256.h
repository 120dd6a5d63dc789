// SHA-256 for the checksums of the download bundle: a host checks each file
// it downloads against its manifest. The digest comes from OpenSSL's
// libcrypto (its EVP interface); nothing of OpenSSL shows in this header, so
// that only the project store links it.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct evp_md_ctx_st;  // OpenSSL's EVP_MD_CTX

namespace qx {

// Incremental form: feed any number of blocks, then take the digest once.
// After digest() the object starts over, empty. An object may be moved, not
// copied. A failure of libcrypto (out of memory) throws std::runtime_error.
class Sha256 {
public:
    Sha256();

    void update(const uint8_t* data, size_t size);
    std::array<uint8_t, 32> digest();
    // The digest as 64 lowercase hexadecimal digits.
    std::string hexDigest();
    void reset();

private:
    struct ContextFree {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, ContextFree> context_;
};

// The SHA-256 of the bytes, as 64 lowercase hexadecimal digits.
std::string sha256Hex(const uint8_t* data, size_t size);

}  // namespace qx
