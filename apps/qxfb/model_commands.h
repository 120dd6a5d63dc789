// The commands of qxfb that run an image through the runtime model, with no
// component and no controller: preview (the wire bytes of a Send message),
// loopback (a Send set held against a Scan set) and decode (a capture of
// received bytes held against a Scan set).
#pragma once
#include <string>
#include <vector>

namespace qx::cli {

// True for "preview", "loopback" and "decode".
bool isModelCommand(const std::string& command);

// Runs one of them with the words after the command, options included.
// Exit status: 0 done (loopback: clean; decode: every frame recognised),
// 1 a file failed or the model found a problem, 2 a usage error.
int runModelCommand(const std::string& command, const std::vector<std::string>& words);

// The lines of qxfb --help for these commands.
extern const char* const modelCommandsHelp;

}  // namespace qx::cli
