// The registry file's editing on any text: an untouched file gives back its
// bytes, a value set reads back (also after parsing the text again), setting
// it again changes nothing, and removing what was added gives back the text
// (or, when the section was there holding nothing, the text without it).
//
// Input layout: byte 0 is flags (bit 0: take the section from the text,
// bit 1: flip the case of its ASCII letters), bytes 1..3 the lengths of the
// section, key and value names that follow; the rest is the text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "fuzz_finding.h"
#include "component/registry.h"

using qx::fuzz::finding;

namespace {

void check(bool holds, const char* what) {
    if (!holds) finding(what);
}

// A name from the input bytes in an alphabet that holds nothing the ini
// syntax would read differently in that place: no line break, no blank at
// the ends, and for keys no '=' nor a leading comment or section mark.
std::string nameFrom(const uint8_t* data, size_t size, const char* alphabet, size_t letters) {
    std::string name;
    for (size_t i = 0; i < size; ++i) name.push_back(alphabet[data[i] % letters]);
    return name;
}

std::string flipCase(std::string name) {
    for (char& c : name)
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) c ^= 0x20;
    return name;
}

// The lines of text without their endings; a byte-order mark belongs to the
// file, not to its first line.
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    size_t at = text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
    while (at < text.size()) {
        size_t end = text.find('\n', at);
        const bool ended = end != std::string::npos;
        if (!ended) end = text.size();
        std::string line = text.substr(at, end - at);
        // Only a line ending is "\r\n": a last line without one keeps its '\r'.
        if (ended && !line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        at = end + 1;
    }
    return lines;
}

// Whether shorter is longer with some of its lines left out.
bool leavesOutWholeLines(const std::string& shorter, const std::string& longer) {
    const auto some = linesOf(shorter), all = linesOf(longer);
    size_t j = 0;
    for (const auto& line : some) {
        while (j < all.size() && all[j] != line) ++j;
        if (j == all.size()) return false;
        ++j;
    }
    return shorter.size() < longer.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    const uint8_t flags = data[0];
    const size_t sectionLength = data[1] % 8, keyLength = data[2] % 4, valueLength = data[3] % 8;
    const size_t textAt = 4 + sectionLength + keyLength + valueLength;
    if (size < textAt) return 0;
    static const char sectionLetters[] = "aAbBxX.\\{}-=;[]";
    static const char keyLetters[] = "aAbBxXk.";
    static const char valueLetters[] = "0123456789=;[]xy";
    std::string section = nameFrom(data + 4, sectionLength, sectionLetters, sizeof sectionLetters - 1);
    const std::string key = nameFrom(data + 4 + sectionLength, keyLength, keyLetters, sizeof keyLetters - 1);
    const std::string value =
        nameFrom(data + 4 + sectionLength + keyLength, valueLength, valueLetters, sizeof valueLetters - 1);
    const std::string text(reinterpret_cast<const char*>(data) + textAt, size - textAt);

    qx::RegistryFile file = qx::RegistryFile::fromText(text);
    check(file.text() == text, "an untouched file does not give back its bytes");
    const std::vector<std::string> sections = file.sections();
    if ((flags & 1) && !sections.empty()) section = sections[data[1] % sections.size()];
    if (flags & 2) section = flipCase(section);

    const bool hadSection = file.hasSection(section);
    const bool hadKey = file.value(section, key).has_value();
    {
        qx::RegistryFile untouched = file;
        if (!untouched.removeValue(section, key + "absent"))
            check(untouched.text() == text, "removing nothing changed the text");
    }

    file.setValue(section, key, value);
    const std::string set = file.text();
    check(file.value(section, key) == value, "a value set does not read back");
    check(file.hasSection(section), "a section set is not there");
    check(file.sections().size() == sections.size() + (hadSection ? 0 : 1), "setting a value made a wrong section");
    qx::RegistryFile reparsed = qx::RegistryFile::fromText(set);
    check(reparsed.text() == set, "the text of an edited file parses to other bytes");
    check(reparsed.value(section, key) == value, "a value set does not read back from the text");
    file.setValue(section, key, value);
    check(file.text() == set, "setting the same value again changed the text");

    check(file.removeValue(section, key), "a value set cannot be removed");
    if (!hadKey) {
        check(!file.value(section, key).has_value(), "a value removed still reads back");
        if (!hadSection)
            check(file.text() == text, "removing a section that was added does not give back the text");
        else if (file.text() != text)
            check(leavesOutWholeLines(file.text(), text), "removing a key that was added took more than its section");
    }
    return 0;
}
