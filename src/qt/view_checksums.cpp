#include "qt/view_checksums.h"

namespace qx {

namespace {

// The view layer runs on the interface thread alone.
model::ChecksumTable& table() {
    static model::ChecksumTable current = model::ChecksumTable::Default();
    return current;
}

}  // namespace

const model::ChecksumTable& viewChecksumTable() { return table(); }

void setViewChecksumTable(const model::ChecksumTable& checksums) { table() = checksums; }

}  // namespace qx
