// The project file: an SQLite database with a schema of its own, marked as
// ours by its application id and versioned by its user version. Loading
// reads it whole; saving replaces its content in one transaction. A file
// that is missing, no regular file, damaged, another program's database,
// of a newer schema or locked is refused with a RuntimeError that names the
// file and the cause, and is left as it was.
#pragma once
#include <cstdint>
#include <string>

#include "project/project.h"

namespace qx {

namespace project_file {
// "QxFB" in the database header's application id field.
inline constexpr int32_t ApplicationId = 0x51784642;
// The schema this program writes, and the newest it reads. Version 2 added
// the operands' descriptions and the operations' find-only operands (side
// 2 of the operands); a file of version 1 is read as it is and written as
// version 2.
inline constexpr int32_t SchemaVersion = 3;
}  // namespace project_file

Project loadProject(const std::string& path);
void saveProject(const std::string& path, const Project& project);

}  // namespace qx
