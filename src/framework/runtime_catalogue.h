// The catalogue of a family's runtime files: the ini file of the family, the
// code and jump files of each version, the family's pictures, and the host's
// text table. Nothing is cached: every call reads the disk again.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/host/host_contract.h"

namespace qx {

// The folder of the runtime files: the host's application folder + "/../FB_Lib/RT/".
std::wstring RuntimeFolder();
// The name in that folder of a version's code (".FBs") or jump (".Jmp") file.
std::wstring runtimeFileName(int32_t FatherID, int32_t Version, const std::wstring& extension);

std::wstring ReadFromIni(int32_t FatherID, const std::wstring& Key);
int32_t ReadCurrentHexFileVersion(int32_t FatherID);
std::vector<int32_t> ReadHexFileVersionsList(int32_t FatherID);
FBHexFileDetails srvGetHexFileDetails(int32_t FatherID, int32_t Version);

// The three pictures of a family or an operation, from the library's own
// resources; one that does not exist stays empty.
void LoadFBImages(int32_t identifier, PicturePtr& MenuIcon, PicturePtr& LadderImage, PicturePtr& LadderImageSelected);

// Text number N of the host's text table.
std::wstring GetText(int32_t N);
// Shows message number N with its parameters; returns the button pressed (1 is yes/OK).
int32_t ShowMessage(int32_t N, const std::vector<std::wstring>& params = {});

}  // namespace qx
