// The ini reader behind GetPrivateProfileStringA on any text: it never
// crashes, a value it finds is one trimmed line's worth, and a key line put
// in front of the text under its own section is always found.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/host/host_services.h"

namespace {

// A name of letters and digits made from the input bytes, so that it holds
// nothing the ini syntax gives a meaning to.
std::string nameFrom(const uint8_t* data, size_t size) {
    static const char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    std::string name;
    for (size_t i = 0; i < size; ++i) name.push_back(alphabet[data[i] % (sizeof(alphabet) - 1)]);
    return name.empty() ? "n" : name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const size_t sectionLength = data[0] % 8, keyLength = data[1] % 8;
    if (size < 2 + sectionLength + keyLength) return 0;
    const std::string section = nameFrom(data + 2, sectionLength);
    const std::string key = nameFrom(data + 2 + sectionLength, keyLength);
    const size_t textAt = 2 + sectionLength + keyLength;
    const std::string text(reinterpret_cast<const char*>(data) + textAt, size - textAt);

    if (auto value = qx::findIniValue(text, section, key)) {
        if (value->size() > text.size() || value->find('\n') != std::string::npos) __builtin_trap();
    }
    const std::string ahead = "[" + section + "]\n" + key + "=found\n";
    if (qx::findIniValue(ahead + text, section, key) != std::string("found")) __builtin_trap();
    return 0;
}
