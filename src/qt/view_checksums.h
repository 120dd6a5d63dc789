// The checksum table that the panes of the view layer compute with (the
// wire bytes under a Send's grid, the test against captured bytes): the
// open project's, which the host hands over whenever its project changes.
// Until then, the model's default table.
#pragma once
#include "runtime_model/checksum_catalogue.h"

namespace qx {

const model::ChecksumTable& viewChecksumTable();
void setViewChecksumTable(const model::ChecksumTable& table);

}  // namespace qx
