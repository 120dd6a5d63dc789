// The application folder the component starts with when neither the host
// (QxFBCom2_HostContext()->AppFolder) nor $QXFB_APP_FOLDER names one. An
// installed component finds the runtime folder that `cmake --install` put
// beside it (share/QxFBCom2/bin and share/QxFBCom2/FB_Lib/RT/), by a path
// relative to its own library, so that a prefix moved elsewhere after the
// install still works; a component in its build tree uses runtime/bin of the
// source tree.
#pragma once
#include <string>

namespace qx {

// The installed application folder: `relative` (the way from the folder of
// the library to the application folder, "../share/QxFBCom2/bin" for the
// usual lib and share) taken from the folder of `library`, without "." and
// ".." steps. `library` is the resolved path of the library (no symbolic
// links), so that ".." can be taken away by text. An empty path when either
// is empty or the library path names no folder.
std::string installedAppFolder(const std::string& library, const std::string& relative);

// The default application folder of the component at `library`: the installed
// one when its runtime folder (<folder>/../FB_Lib/RT) is a directory, that is
// when this library is the installed one; else `buildTreeFolder`, the
// application folder of the source tree the component was built from.
std::string defaultAppFolder(const std::string& library, const std::string& relative,
                             const std::string& buildTreeFolder);

}  // namespace qx
