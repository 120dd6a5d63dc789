// The registry file in which the component records its classes (what the
// system registry holds on the platform the host comes from): an ini text of
// sections and key=value lines. Editing keeps every line it does not touch,
// comments and foreign entries included, so that several components can
// share one file.
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
    // The file's content; a file that does not exist reads as empty. Throws
    // std::runtime_error when an existing file cannot be read.
    static RegistryFile load(const std::string& path);

    std::string text() const;
    // Writes the whole text through a temporary file beside the target and a
    // rename, creating missing folders. Throws std::runtime_error on failure.
    void save(const std::string& path) const;

    // Section and key names compare without regard to ASCII case.
    std::optional<std::string> value(const std::string& section, const std::string& key) const;
    bool hasSection(const std::string& section) const;
    std::vector<std::string> sections() const;
    // Replaces the key's value where it stands, or adds the key at the end of
    // its section, or adds the section at the end of the file.
    void setValue(const std::string& section, const std::string& key, const std::string& value);
    // Removes the key from every occurrence of the section. A section left
    // with nothing but blank lines goes too, with the blank lines before it.
    // True when something was removed.
    bool removeValue(const std::string& section, const std::string& key);

private:
    static bool isSectionLine(const std::string& line, std::string* name);
    static bool isKeyLine(const std::string& line, std::string* key, std::string* value);
    void dropEmptySection(const std::string& section);

    std::vector<std::string> lines_;
    bool endsWithNewline_ = true;
};

// Where DllRegisterServer writes: $QXFB_REGISTRY when set and not empty, else
// $XDG_CONFIG_HOME/QxFBCom2/registry.ini, else ~/.config/QxFBCom2/registry.ini.
std::string registryFilePath();

}  // namespace qx
