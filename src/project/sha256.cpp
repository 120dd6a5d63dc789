#include "project/sha256.h"

#include <openssl/evp.h>

#include <string>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

// libcrypto fails a digest only when it runs out of memory.
[[noreturn]] void fail(const std::wstring& what) {
    throw RuntimeError(err::OutOfMemory, L"QxFBCom2 SHA-256", L"SHA-256: " + what + L" failed in libcrypto");
}

void check(int result, const wchar_t* what) {
    if (result != 1) fail(what);
}

}  // namespace

void Sha256::ContextFree::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    if (!context_) fail(L"EVP_MD_CTX_new");
    reset();
}

void Sha256::reset() { check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr), L"EVP_DigestInit_ex"); }

void Sha256::update(const uint8_t* data, size_t size) {
    if (size == 0) return;  // data may be null then
    check(EVP_DigestUpdate(context_.get(), data, size), L"EVP_DigestUpdate");
}

std::array<uint8_t, 32> Sha256::digest() {
    std::array<uint8_t, 32> result{};
    unsigned int length = 0;
    check(EVP_DigestFinal_ex(context_.get(), result.data(), &length), L"EVP_DigestFinal_ex");
    if (length != result.size()) fail(L"a digest of 32 bytes");
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
