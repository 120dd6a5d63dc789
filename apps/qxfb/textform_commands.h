// The commands of qxfb that turn a Send or Scan image into its text form
// (JSON that a person can read and diff) and back: export and import.
#pragma once
#include <string>
#include <vector>

namespace qx::cli {

// True for "export" and "import".
bool isTextFormCommand(const std::string& command);

// Runs one of them with the words after the command, options included.
// Exit status: 0 done, 1 a file failed or its content is invalid (the
// message names the file, and for a text its line and column), 2 a usage
// error.
int runTextFormCommand(const std::string& command, const std::vector<std::string>& words);

// The lines of qxfb --help for these commands.
extern const char* const textFormCommandsHelp;

}  // namespace qx::cli
