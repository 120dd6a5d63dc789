#include "project/sha256.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace qx {

namespace {

void check(int result, const char* what) {
    if (result != 1) throw std::runtime_error(std::string("SHA-256: ") + what + " failed in libcrypto");
}

}  // namespace

void Sha256::ContextFree::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    if (!context_) throw std::runtime_error("SHA-256: libcrypto could not make a digest context");
    reset();
}

void Sha256::reset() { check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr), "EVP_DigestInit_ex"); }

void Sha256::update(const uint8_t* data, size_t size) {
    if (size == 0) return;  // data may be null then
    check(EVP_DigestUpdate(context_.get(), data, size), "EVP_DigestUpdate");
}

std::array<uint8_t, 32> Sha256::digest() {
    std::array<uint8_t, 32> result{};
    unsigned int length = 0;
    check(EVP_DigestFinal_ex(context_.get(), result.data(), &length), "EVP_DigestFinal_ex");
    if (length != result.size()) throw std::runtime_error("SHA-256: libcrypto gave a digest of another length");
    reset();
    return result;
}

std::string Sha256::hexDigest() {
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(64);
    for (uint8_t byte : digest()) {
        text += Digits[byte >> 4];
        text += Digits[byte & 15];
    }
    return text;
}

std::string sha256Hex(const uint8_t* data, size_t size) {
    Sha256 hash;
    hash.update(data, size);
    return hash.hexDigest();
}

}  // namespace qx
