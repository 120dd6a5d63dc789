#include "component/registry.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace qx {

namespace {

std::string trim(const std::string& text) {
    size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    size_t last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

bool sameName(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

bool isBlank(const std::string& line) { return trim(line).empty(); }

}  // namespace

bool RegistryFile::isSectionLine(const std::string& line, std::string* name) {
    std::string t = trim(line);
    if (t.size() < 2 || t.front() != '[' || t.back() != ']') return false;
    if (name) *name = trim(t.substr(1, t.size() - 2));
    return true;
}

bool RegistryFile::isKeyLine(const std::string& line, std::string* key, std::string* value) {
    std::string t = trim(line);
    if (t.empty() || t.front() == ';' || t.front() == '#' || t.front() == '[') return false;
    size_t eq = t.find('=');
    if (eq == std::string::npos) return false;
    if (key) *key = trim(t.substr(0, eq));
    if (value) *value = trim(t.substr(eq + 1));
    return true;
}

RegistryFile RegistryFile::fromText(const std::string& text) {
    RegistryFile file;
    std::string line;
    std::istringstream in(text);
    while (std::getline(in, line)) file.lines_.push_back(line);
    file.endsWithNewline_ = text.empty() || text.back() == '\n';
    return file;
}

RegistryFile RegistryFile::load(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return RegistryFile{};
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::ostringstream content;
    content << in.rdbuf();
    return fromText(content.str());
}

std::string RegistryFile::text() const {
    std::string out;
    for (size_t i = 0; i < lines_.size(); ++i) {
        out += lines_[i];
        if (i + 1 < lines_.size() || endsWithNewline_) out += '\n';
    }
    return out;
}

void RegistryFile::save(const std::string& path) const {
    namespace fs = std::filesystem;
    fs::path target(path);
    if (target.has_parent_path()) fs::create_directories(target.parent_path());
    fs::path temporary = target;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) throw std::runtime_error("cannot write " + temporary.string());
        out << text();
        out.flush();
        if (!out) throw std::runtime_error("cannot write " + temporary.string());
    }
    std::error_code ec;
    fs::rename(temporary, target, ec);
    if (ec) {
        fs::remove(temporary, ec);
        throw std::runtime_error("cannot replace " + path);
    }
}

std::optional<std::string> RegistryFile::value(const std::string& section, const std::string& key) const {
    bool inSection = false;
    for (const auto& line : lines_) {
        std::string name, k, v;
        if (isSectionLine(line, &name))
            inSection = sameName(name, section);
        else if (inSection && isKeyLine(line, &k, &v) && sameName(k, key))
            return v;
    }
    return std::nullopt;
}

bool RegistryFile::hasSection(const std::string& section) const {
    std::string name;
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const std::string& line) { return isSectionLine(line, &name) && sameName(name, section); });
}

std::vector<std::string> RegistryFile::sections() const {
    std::vector<std::string> names;
    for (const auto& line : lines_) {
        std::string name;
        if (isSectionLine(line, &name)) names.push_back(name);
    }
    return names;
}

void RegistryFile::setValue(const std::string& section, const std::string& key, const std::string& value) {
    const std::string entry = key + "=" + value;
    bool inSection = false;
    size_t lastOfSection = 0;
    bool found = false;
    for (size_t i = 0; i < lines_.size(); ++i) {
        std::string name, k;
        if (isSectionLine(lines_[i], &name)) {
            if (found && inSection) break;  // only the first occurrence of the section takes new keys
            inSection = sameName(name, section);
            if (inSection) {
                found = true;
                lastOfSection = i;
            }
        } else if (inSection) {
            if (isKeyLine(lines_[i], &k, nullptr) && sameName(k, key)) {
                lines_[i] = entry;
                return;
            }
            if (!isBlank(lines_[i])) lastOfSection = i;
        }
    }
    if (found) {
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(lastOfSection + 1), entry);
        return;
    }
    if (!lines_.empty() && !isBlank(lines_.back())) lines_.push_back("");
    lines_.push_back("[" + section + "]");
    lines_.push_back(entry);
    endsWithNewline_ = true;
}

bool RegistryFile::removeValue(const std::string& section, const std::string& key) {
    bool removed = false;
    bool inSection = false;
    for (size_t i = 0; i < lines_.size();) {
        std::string name, k;
        if (isSectionLine(lines_[i], &name))
            inSection = sameName(name, section);
        else if (inSection && isKeyLine(lines_[i], &k, nullptr) && sameName(k, key)) {
            lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
            removed = true;
            continue;
        }
        ++i;
    }
    if (removed) dropEmptySection(section);
    return removed;
}

void RegistryFile::dropEmptySection(const std::string& section) {
    for (size_t i = 0; i < lines_.size();) {
        std::string name;
        if (!isSectionLine(lines_[i], &name) || !sameName(name, section)) {
            ++i;
            continue;
        }
        size_t end = i + 1;
        while (end < lines_.size() && !isSectionLine(lines_[end], nullptr) && isBlank(lines_[end])) ++end;
        bool empty = end == lines_.size() || isSectionLine(lines_[end], nullptr);
        if (!empty) {
            ++i;
            continue;
        }
        // At the end of the file the blank lines that set the section apart go
        // with it; before another section they stay as that one's separator.
        size_t begin = i;
        if (end == lines_.size())
            while (begin > 0 && isBlank(lines_[begin - 1])) --begin;
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(begin),
                     lines_.begin() + static_cast<std::ptrdiff_t>(end));
        i = begin;
    }
}

std::string registryFilePath() {
    if (const char* explicitPath = std::getenv("QXFB_REGISTRY"); explicitPath && *explicitPath) return explicitPath;
    std::string base;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg)
        base = xdg;
    else if (const char* home = std::getenv("HOME"); home && *home)
        base = std::string(home) + "/.config";
    else
        base = ".config";
    return base + "/QxFBCom2/registry.ini";
}

}  // namespace qx
