#include "component/registry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "platform/basics/ascii_case.h"
#include "platform/basics/file_reader.h"

namespace qx {

namespace {

namespace fs = std::filesystem;

const char ByteOrderMark[] = "\xEF\xBB\xBF";
constexpr size_t npos = std::string::npos;

std::string trim(const std::string& text) {
    size_t first = text.find_first_not_of(" \t\r");
    if (first == npos) return "";
    size_t last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

bool isBlank(const std::string& line) { return trim(line).empty(); }

bool isSectionLine(const std::string& line, std::string* name) {
    std::string t = trim(line);
    if (t.size() < 2 || t.front() != '[' || t.back() != ']') return false;
    if (name) *name = trim(t.substr(1, t.size() - 2));
    return true;
}

bool isKeyLine(const std::string& line, std::string* key, std::string* value) {
    std::string t = trim(line);
    if (t.empty() || t.front() == ';' || t.front() == '#' || t.front() == '[') return false;
    size_t eq = t.find('=');
    if (eq == npos) return false;
    if (key) *key = trim(t.substr(0, eq));
    if (value) *value = trim(t.substr(eq + 1));
    return true;
}

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what + ": " + std::strerror(errno)); }

// The file that saving at path replaces: path itself, or where its chain of
// symbolic links ends, whether that file exists or not. A relative link
// counts from the link's own folder.
fs::path finalTarget(fs::path path) {
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code ec;
        if (!fs::is_symlink(fs::symlink_status(path, ec))) return path;
        const fs::path link = fs::read_symlink(path);
        path = link.is_absolute() ? link : path.parent_path() / link;
    }
    throw std::runtime_error("too many symbolic links at " + path.string());
}

// "<target>.XXXXXX", a name of its own for each save, so that concurrent
// saves never write into or rename each other's file. Removed unless it
// became the target.
class TemporaryFile {
public:
    TemporaryFile(const std::string& target, mode_t mode) {
        static const char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
        std::random_device random;
        for (int attempt = 0; attempt < 100; ++attempt) {
            name_ = target + ".";
            for (int i = 0; i < 6; ++i) name_ += letters[random() % (sizeof letters - 1)];
            // The mode goes through the umask, as for any new file.
            fd_ = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (fd_ >= 0 || errno != EEXIST) break;
        }
        if (fd_ < 0) fail("cannot create a temporary file beside " + target);
    }
    ~TemporaryFile() {
        if (fd_ >= 0) ::close(fd_);
        if (!renamed_) ::unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(const std::string& text) {
        for (size_t done = 0; done < text.size();) {
            const ssize_t written = ::write(fd_, text.data() + done, text.size() - done);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) fail("cannot write " + name_);
            done += static_cast<size_t>(written);
        }
    }
    // The owner first: a change of owner clears the set-id bits of the mode.
    void takeOwnerAndMode(const struct stat& of) {
        struct stat own {};
        if (::fstat(fd_, &own) != 0) fail("cannot inspect " + name_);
        if ((own.st_uid != of.st_uid || own.st_gid != of.st_gid) && ::fchown(fd_, of.st_uid, of.st_gid) != 0)
            fail("cannot give " + name_ + " the owner of the file it replaces");
        if (::fchmod(fd_, of.st_mode & 07777) != 0) fail("cannot give " + name_ + " the mode of the file it replaces");
    }
    void replace(const std::string& target) {
        if (::fsync(fd_) != 0) fail("cannot write " + name_);
        const int fd = fd_;
        fd_ = -1;
        if (::close(fd) != 0) fail("cannot write " + name_);
        if (::rename(name_.c_str(), target.c_str()) != 0) fail("cannot replace " + target);
        renamed_ = true;
    }

private:
    std::string name_;
    int fd_ = -1;
    bool renamed_ = false;
};

}  // namespace

RegistryFile RegistryFile::fromText(const std::string& text) {
    RegistryFile file;
    size_t at = 0;
    if (text.rfind(ByteOrderMark, 0) == 0) {
        file.byteOrderMark_ = ByteOrderMark;
        at = file.byteOrderMark_.size();
    }
    size_t crlfLines = 0;
    while (at < text.size()) {
        const size_t end = text.find('\n', at);
        if (end == npos) {
            file.lines_.push_back({text.substr(at), false});
            file.finalNewline_ = false;
            break;
        }
        const bool crlf = end > at && text[end - 1] == '\r';
        file.lines_.push_back({text.substr(at, end - at - (crlf ? 1 : 0)), crlf});
        crlfLines += crlf ? 1 : 0;
        at = end + 1;
    }
    const size_t endedLines = file.lines_.size() - (file.finalNewline_ ? 0 : 1);
    file.crlf_ = 2 * crlfLines > endedLines;
    // Lines added after it need it ended; text() leaves the ending out again
    // while it is last.
    if (!file.finalNewline_) file.lines_.back().Crlf = file.crlf_;
    return file;
}

RegistryFile RegistryFile::load(const std::string& path) {
    const FileContent content = readRegularFile(path, file_limit::Registry);
    if (content.Status == FileReadStatus::Missing) return RegistryFile{};
    if (content.Status != FileReadStatus::Ok) throw std::runtime_error("cannot read " + path + " as a regular file");
    return fromText(std::string(content.Data.begin(), content.Data.end()));
}

std::string RegistryFile::text() const {
    std::string out = byteOrderMark_;
    for (size_t i = 0; i < lines_.size(); ++i) {
        out += lines_[i].Text;
        if (i + 1 < lines_.size() || finalNewline_) out += lines_[i].Crlf ? "\r\n" : "\n";
    }
    return out;
}

void RegistryFile::save(const std::string& path) const {
    // An empty path would put the temporary file in the current folder.
    if (path.empty()) throw std::runtime_error("no path for the registry file");
    const std::string content = text();
    const fs::path target = finalTarget(path);
    if (target.has_parent_path()) fs::create_directories(target.parent_path());
    struct stat existing {};
    const bool replacing = ::lstat(target.c_str(), &existing) == 0;
    if (!replacing && errno != ENOENT) fail("cannot inspect " + target.string());
    if (replacing && !S_ISREG(existing.st_mode)) throw std::runtime_error(target.string() + " is no regular file");
    // Renaming over a file needs only its folder to be writable; a file that
    // no one may write was made so on purpose and stays as it is, even for root.
    if (replacing && (existing.st_mode & 0222) == 0) throw std::runtime_error(target.string() + " is read-only");

    TemporaryFile temporary(target.string(), replacing ? 0600 : 0644);
    temporary.write(content);
    // The replaced file's mode and owner carry over. A file that cannot be
    // given back to its owner is left as it was rather than taken over.
    if (replacing) temporary.takeOwnerAndMode(existing);
    temporary.replace(target.string());
}

RegistryFile::Place RegistryFile::find(const std::string& section, const std::string& key) const {
    Place place{npos, lines_.size(), npos, npos};
    for (size_t i = 0; i < lines_.size(); ++i) {
        std::string name;
        const std::string& line = lines_[i].Text;
        if (isSectionLine(line, &name)) {
            if (place.Header != npos) {
                place.End = i;
                break;
            }
            if (sameIgnoringAsciiCase(name, section)) {
                place.Header = i;
                place.After = i + 1;
            }
        } else if (place.Header != npos) {
            if (place.Key == npos && isKeyLine(line, &name, nullptr) && sameIgnoringAsciiCase(name, key)) place.Key = i;
            if (!isBlank(line)) place.After = i + 1;
        }
    }
    return place;
}

void RegistryFile::insert(size_t at, std::string text) {
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), Line{std::move(text), crlf_});
}

std::optional<std::string> RegistryFile::value(const std::string& section, const std::string& key) const {
    bool inSection = false;
    for (const auto& line : lines_) {
        std::string name, k, v;
        if (isSectionLine(line.Text, &name))
            inSection = sameIgnoringAsciiCase(name, section);
        else if (inSection && isKeyLine(line.Text, &k, &v) && sameIgnoringAsciiCase(k, key))
            return v;
    }
    return std::nullopt;
}

bool RegistryFile::hasSection(const std::string& section) const {
    std::string name;
    return std::any_of(lines_.begin(), lines_.end(), [&](const Line& line) {
        return isSectionLine(line.Text, &name) && sameIgnoringAsciiCase(name, section);
    });
}

std::vector<std::string> RegistryFile::sections() const {
    std::vector<std::string> names;
    for (const auto& line : lines_) {
        std::string name;
        if (isSectionLine(line.Text, &name)) names.push_back(name);
    }
    return names;
}

void RegistryFile::setValue(const std::string& section, const std::string& key, const std::string& value) {
    const Place place = find(section, key);
    if (place.Key != npos) {
        // A line that already says so stays as it is written.
        std::string current;
        isKeyLine(lines_[place.Key].Text, nullptr, &current);
        if (current != value) lines_[place.Key].Text = key + "=" + value;
    } else if (place.Header != npos) {
        insert(place.After, key + "=" + value);
    } else {
        // Always a blank line of its own, so that removing the section takes
        // exactly what came with it.
        if (!lines_.empty()) insert(lines_.size(), "");
        insert(lines_.size(), "[" + section + "]");
        insert(lines_.size(), key + "=" + value);
    }
}

bool RegistryFile::removeValue(const std::string& section, const std::string& key) {
    const Place place = find(section, key);
    if (place.Key == npos) return false;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(place.Key));
    const size_t end = place.End - 1;
    const bool empty = std::all_of(lines_.begin() + static_cast<std::ptrdiff_t>(place.Header + 1),
                                   lines_.begin() + static_cast<std::ptrdiff_t>(end),
                                   [](const Line& line) { return isBlank(line.Text); });
    if (empty) {
        // Before another section the blank lines before this one stay as that
        // one's separator; at the end of the file the one setValue added goes.
        size_t begin = place.Header;
        if (end == lines_.size() && begin > 0 && isBlank(lines_[begin - 1].Text)) --begin;
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(begin),
                     lines_.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return true;
}

std::string registryFilePath() {
    if (const char* explicitPath = std::getenv("QXFB_REGISTRY"); explicitPath && *explicitPath) return explicitPath;
    // A relative folder would put the file wherever the host happens to run.
    auto absolute = [](const char* folder) { return folder && folder[0] == '/'; };
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); absolute(xdg))
        return std::string(xdg) + "/QxFBCom2/registry.ini";
    if (const char* home = std::getenv("HOME"); absolute(home))
        return std::string(home) + "/.config/QxFBCom2/registry.ini";
    return "";
}

}  // namespace qx
