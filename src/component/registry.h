// The registry file in which the component records its classes (what the
// system registry holds on the platform the host comes from): an ini text of
// sections and key=value lines. Editing keeps every byte it does not touch,
// comments, foreign entries, line endings and a byte-order mark included, so
// that several components can share one file and removing what was added
// gives back the very same file.
#pragma once
#include <optional>
#include <string>
#include <vector>

namespace qx {

class RegistryFile {
public:
    // Parses ini text; any line is accepted, a line that is no section and no
    // key=value pair is kept as it is.
    static RegistryFile fromText(const std::string& text);
    // The file's content, read only as a regular file within
    // file_limit::Registry; a file that does not exist reads as empty. Throws
    // std::runtime_error for anything else (a folder, FIFO, device, a file
    // too large or unreadable).
    static RegistryFile load(const std::string& path);

    std::string text() const;
    // Replaces the file at path, or the file its symbolic links end at, with
    // the whole text: written to a temporary file of its own beside that
    // target, given the replaced file's mode and owner, then renamed over it.
    // Creates missing folders; a new file gets 0644 less the umask. Throws
    // std::runtime_error on failure, leaving the file as it was, and for a
    // file that no one may write (0444, 0400).
    void save(const std::string& path) const;

    // Section and key names compare without regard to the case of ASCII letters.
    std::optional<std::string> value(const std::string& section, const std::string& key) const;
    bool hasSection(const std::string& section) const;
    std::vector<std::string> sections() const;
    // In the first occurrence of the section: replaces the key's value where
    // it stands, or adds the key after the section's last line that is not
    // blank; else adds the section after a blank line at the end of the file.
    // New lines take the ending most lines of the file have.
    void setValue(const std::string& section, const std::string& key, const std::string& value);
    // Removes the key's line that setValue writes, in the first occurrence
    // of the section. A section left with nothing but blank lines goes too;
    // at the end of the file with the blank line before it. True when
    // something was removed.
    bool removeValue(const std::string& section, const std::string& key);

private:
    struct Line {
        std::string Text;  // without its line ending
        bool Crlf = false;
    };
    // Where the first occurrence of a section stands; npos when absent.
    struct Place {
        size_t Header, End, Key, After;
    };
    Place find(const std::string& section, const std::string& key) const;
    void insert(size_t at, std::string text);

    std::string byteOrderMark_;
    std::vector<Line> lines_;
    // The last line goes out without its ending when the text came so.
    bool finalNewline_ = true;
    bool crlf_ = false;
};

// Where DllRegisterServer writes: $QXFB_REGISTRY when set and not empty, else
// $XDG_CONFIG_HOME/QxFBCom2/registry.ini, else ~/.config/QxFBCom2/registry.ini
// ($XDG_CONFIG_HOME and $HOME only when absolute). Empty when none of them
// names a place: the current folder is no place for it.
std::string registryFilePath();

}  // namespace qx
