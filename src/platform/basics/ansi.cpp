#include "platform/basics/ansi.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <mutex>
#include <unordered_map>

namespace qx {

namespace {

// The code page is fixed, so both directions are built once from iconv and
// then looked up; the five holes of Windows-1252 map to their C1 codes.
struct CodePage {
    std::array<wchar_t, 256> toWide{};
    std::unordered_map<wchar_t, uint8_t> toByte;

    CodePage() {
        iconv_t cd = iconv_open("WCHAR_T", "WINDOWS-1252");
        for (int b = 0; b < 256; ++b) {
            wchar_t out = static_cast<wchar_t>(b);
            if (cd != reinterpret_cast<iconv_t>(-1)) {
                char in = static_cast<char>(b);
                char* inPtr = &in;
                size_t inLeft = 1;
                wchar_t wide = 0;
                char* outPtr = reinterpret_cast<char*>(&wide);
                size_t outLeft = sizeof(wide);
                if (iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft) != static_cast<size_t>(-1)) out = wide;
                iconv(cd, nullptr, nullptr, nullptr, nullptr);
            }
            toWide[static_cast<size_t>(b)] = out;
            toByte.emplace(out, static_cast<uint8_t>(b));
        }
        if (cd != reinterpret_cast<iconv_t>(-1)) iconv_close(cd);
    }
};

const CodePage& codePage() {
    static const CodePage page;
    return page;
}

}  // namespace

uint8_t toAnsiByte(wchar_t ch) {
    const auto& map = codePage().toByte;
    auto it = map.find(ch);
    return it == map.end() ? static_cast<uint8_t>('?') : it->second;
}

std::string toAnsi(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (wchar_t ch : text) out.push_back(static_cast<char>(toAnsiByte(ch)));
    return out;
}

wchar_t fromAnsiByte(uint8_t byte) { return codePage().toWide[byte]; }

std::wstring fromAnsi(const std::string& bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (char c : bytes) out.push_back(fromAnsiByte(static_cast<uint8_t>(c)));
    return out;
}

std::string toUtf8(const std::wstring& text) {
    std::string out;
    for (wchar_t wc : text) {
        auto c = static_cast<uint32_t>(wc);
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (c >> 12)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | ((c >> 18) & 0x07)));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

std::wstring fromUtf8(const std::string& text) {
    std::wstring out;
    size_t i = 0;
    while (i < text.size()) {
        auto b = static_cast<uint8_t>(text[i]);
        uint32_t c = b;
        size_t extra = 0;
        if (b >= 0xF0) {
            c = b & 0x07;
            extra = 3;
        } else if (b >= 0xE0) {
            c = b & 0x0F;
            extra = 2;
        } else if (b >= 0xC0) {
            c = b & 0x1F;
            extra = 1;
        }
        ++i;
        for (size_t k = 0; k < extra && i < text.size(); ++k, ++i)
            c = (c << 6) | (static_cast<uint8_t>(text[i]) & 0x3F);
        out.push_back(static_cast<wchar_t>(c));
    }
    return out;
}

}  // namespace qx
