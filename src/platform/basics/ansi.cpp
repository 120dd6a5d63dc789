#include "platform/basics/ansi.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <vector>

namespace qx {

namespace {

// The code page is fixed, so both directions are built once from iconv and
// then looked up; the five holes of Windows-1252 map to their C1 codes.
// Characters below 256 find their byte in a flat table; the 27 above it
// (euro sign, typographic quotes, ...) in a short sorted list.
struct CodePage {
    static constexpr uint8_t Unmappable = '?';
    struct Special {
        wchar_t Char;
        uint8_t Byte;
    };

    std::array<wchar_t, 256> toWide{};
    std::array<uint8_t, 256> lowToByte{};
    std::vector<Special> specials;

    CodePage() {
        lowToByte.fill(Unmappable);
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
            if (static_cast<uint32_t>(out) < 256)
                lowToByte[static_cast<size_t>(out)] = static_cast<uint8_t>(b);
            else
                specials.push_back({out, static_cast<uint8_t>(b)});
        }
        if (cd != reinterpret_cast<iconv_t>(-1)) iconv_close(cd);
        std::sort(specials.begin(), specials.end(), [](const Special& a, const Special& b) { return a.Char < b.Char; });
    }

    uint8_t byteOf(wchar_t ch) const {
        if (static_cast<uint32_t>(ch) < 256) return lowToByte[static_cast<size_t>(ch)];
        auto it = std::lower_bound(specials.begin(), specials.end(), ch,
                                   [](const Special& s, wchar_t c) { return s.Char < c; });
        return it != specials.end() && it->Char == ch ? it->Byte : Unmappable;
    }
};

const CodePage& codePage() {
    static const CodePage page;
    return page;
}

}  // namespace

uint8_t toAnsiByte(wchar_t ch) { return codePage().byteOf(ch); }

std::string toAnsi(const std::wstring& text) {
    std::string out(text.size(), '\0');
    toAnsiBytes(text, reinterpret_cast<uint8_t*>(out.data()));
    return out;
}

void toAnsiBytes(std::wstring_view text, uint8_t* out) {
    // Most texts are plain ASCII, which is its own byte: one vectorisable
    // pass tells, another narrows.
    uint32_t any = 0;
    for (wchar_t ch : text) any |= static_cast<uint32_t>(ch);
    if (any < 0x80) {
        for (size_t i = 0; i < text.size(); ++i) out[i] = static_cast<uint8_t>(text[i]);
        return;
    }
    const CodePage& page = codePage();
    for (wchar_t ch : text) *out++ = page.byteOf(ch);
}

wchar_t fromAnsiByte(uint8_t byte) { return codePage().toWide[byte]; }

std::wstring fromAnsi(const std::string& bytes) {
    std::wstring out(bytes.size(), L'\0');
    fromAnsiBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), out.data());
    return out;
}

const std::array<wchar_t, 256>& ansiToWideTable() { return codePage().toWide; }

void fromAnsiBytes(const uint8_t* bytes, size_t count, wchar_t* out) {
    const auto& toWide = codePage().toWide;
    for (size_t i = 0; i < count; ++i) out[i] = toWide[bytes[i]];
}

namespace {

// A byte that is no part of valid UTF-8 (a Latin-1 file name, say) becomes
// one character of its own, U+DC80 to U+DCFF, and goes back to the same
// byte: any name the system allows survives the trip through a text.
constexpr uint32_t kEscapeBase = 0xDC00;

bool isEscapedByte(uint32_t c) { return c >= kEscapeBase + 0x80 && c <= kEscapeBase + 0xFF; }

bool isContinuation(uint8_t b) { return (b & 0xC0) == 0x80; }

// The length of the valid sequence at text[i], or 0 when the byte there
// starts none: a truncated sequence, a wrong continuation byte, an overlong
// form, a surrogate or a value past U+10FFFF.
size_t validSequenceAt(const std::string& text, size_t i, uint32_t& code) {
    const auto byte = [&](size_t k) { return static_cast<uint8_t>(text[i + k]); };
    const uint8_t lead = byte(0);
    size_t length = 0;
    uint32_t min = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, code = lead & 0x1Fu, min = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, code = lead & 0x0Fu, min = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, code = lead & 0x07u, min = 0x10000;
    } else {
        return 0;
    }
    if (text.size() - i < length) return 0;
    for (size_t k = 1; k < length; ++k) {
        if (!isContinuation(byte(k))) return 0;
        code = (code << 6) | (byte(k) & 0x3Fu);
    }
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return length;
}

}  // namespace

std::string toUtf8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (wchar_t wc : text) {
        auto c = static_cast<uint32_t>(wc);
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (isEscapedByte(c)) {
            out.push_back(static_cast<char>(c - kEscapeBase));
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
    out.reserve(text.size());
    size_t i = 0;
    while (i < text.size()) {
        const auto b = static_cast<uint8_t>(text[i]);
        uint32_t code = 0;
        if (b < 0x80) {
            out.push_back(static_cast<wchar_t>(b));
            ++i;
        } else if (size_t length = validSequenceAt(text, i, code)) {
            out.push_back(static_cast<wchar_t>(code));
            i += length;
        } else {
            // Only this byte is taken: what follows is read afresh.
            out.push_back(static_cast<wchar_t>(kEscapeBase + b));
            ++i;
        }
    }
    return out;
}

}  // namespace qx
