#include "component/default_app_folder.h"

#include <filesystem>
#include <system_error>

namespace qx {

namespace fs = std::filesystem;

std::string installedAppFolder(const std::string& library, const std::string& relative) {
    if (library.empty() || relative.empty()) return "";
    const fs::path folder = fs::path(library).parent_path();
    if (folder.empty()) return "";
    return (folder / relative).lexically_normal().string();
}

std::string defaultAppFolder(const std::string& library, const std::string& relative,
                             const std::string& buildTreeFolder) {
    const std::string installed = installedAppFolder(library, relative);
    if (installed.empty()) return buildTreeFolder;
    // The same place HostContext::RuntimeFolder() reads from.
    std::error_code error;
    if (fs::is_directory(fs::path(installed) / ".." / "FB_Lib" / "RT", error)) return installed;
    return buildTreeFolder;
}

}  // namespace qx
