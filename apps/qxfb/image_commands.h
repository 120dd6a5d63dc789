// The commands of qxfb that read images without the component: "dump", the
// annotated listing of an image, and "diff", what two images of one kind
// say differently.
#pragma once
#include <string>
#include <vector>

namespace qxfb {

// "dump" and "diff".
bool isInspectCommand(const std::string& word);

// Runs the command with all the words after the program's name (the
// command first); gives the exit status. dump: 0, 1 when the file or the
// image failed, 2 on a usage error. diff: 0 equal, 1 different, 2 on a
// usage error or when a file or an image failed.
int runInspectCommand(const std::vector<std::string>& args);

}  // namespace qxfb
