// A project as a folder of JSON files that a person can read, diff and keep
// in version control:
//   project.json            the settings, the nets with their operations
//                           (family, method, instance, operand links by type
//                           name and address, the image in hexadecimal of an
//                           operation that holds no message set), the
//                           instances, constants and descriptions
//   checksums.json          the checksum table ("qxfbcom2-checksum-table")
//   messages/net001_op002_send.json
//                           the text form of every Send and Scan
//                           ("qxfbcom2-message-set"), named by net, place
//                           and kind
// The folder is written whole or not at all, as the download bundle is.
#pragma once
#include <string>
#include <vector>

#include "project/folder_writer.h"
#include "project/project.h"

namespace qx {

inline constexpr const char* ProjectExportFormat = "qxfbcom2-project-export";

// Writes the folder, which must be missing or empty; returns every file
// written. Raises RuntimeError 75 for a folder that is not empty, and one
// naming the file, the action and the cause when writing fails.
std::vector<BundleFile> writeProjectExport(const Project& project, const std::string& folder);

}  // namespace qx
