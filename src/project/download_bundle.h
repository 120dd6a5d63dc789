// The download bundle of a project: everything the host sends to the
// controller, as plain files in one folder, with a manifest that says what
// each file is and holds its size and SHA-256, so that a downloader (or a
// person) can check the folder before it goes out.
//
// Layout of the folder:
//   operations/net001_op002_170103.bin   an operation's BinaryOperands; nets
//                                        and operations numbered from 1 in
//                                        project order, then the MethodID
//   instances/170100_0001.bin            an instance's data: FatherID, InstanceNum
//   runtime/170100V100.FBs, .Jmp         the runtime files of every family and
//                                        version the operations use, once each,
//                                        named as in the runtime folder
//   manifest.json                        written last: a folder without it is
//                                        not a complete bundle
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/host/host_contract.h"
#include "project/folder_writer.h"
#include "project/project.h"

namespace qx {

// The runtime files of one version of a family, as the family hands them out
// (itfFBFather_GetHexFileDetails).
using RuntimeFilesOf = std::function<FBHexFileDetails(int32_t FatherID, int32_t HexFileVersion)>;

// The runtime files through the families of a gate. A family that reports
// missing files (and hands out placeholders) raises a RuntimeError naming the
// family, the version and the runtime folder of the host context: a bundle
// of placeholders would download nothing that works.
RuntimeFilesOf runtimeFilesFrom(itfFBGate& gate, HostContext& context);

// Writes the bundle into folder, which must be missing (its parents are
// made) or an empty folder. The files go into a fresh folder beside it,
// renamed into place when whole: folder shows the whole bundle or nothing,
// and a second writer into the same folder fails rather than mixing its
// files in. runtimeFiles is asked once per (FatherID, HexFileVersion) pair,
// before anything is written. Returns every file written in the order
// written: operations, instances, runtime files, and last manifest.json.
// runtimeFolder, when given, is recorded in the manifest as the folder the
// runtime files came from. Raises RuntimeError 75 when folder is no folder
// or not empty, and a RuntimeError naming the file or folder, the action and
// the cause when writing fails; nothing is left behind then.
std::vector<BundleFile> writeDownloadBundle(const Project& project, const std::string& folder,
                                            const RuntimeFilesOf& runtimeFiles,
                                            const std::wstring& runtimeFolder = L"");

// The name of the manifest inside the folder.
inline constexpr const char* BundleManifestName = "manifest.json";

// A JSON string literal of the text, quotes included: valid UTF-8, with
// quotes, backslashes and control characters escaped, and a character that
// has no UTF-8 form (a byte of a name that was not UTF-8) replaced by U+FFFD.
std::string jsonString(const std::wstring& text);

}  // namespace qx
