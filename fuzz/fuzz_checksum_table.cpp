// Fuzz target of the checksum table's JSON reader: arbitrary bytes as a
// checksums.json. The reader may only refuse with RuntimeError; a table it
// accepts holds sound definitions only, and its own text reads back to the
// same table.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fuzz_finding.h"
#include "platform/basics/runtime_error.h"
#include "runtime_model/checksum_table_json.h"

using qx::fuzz::finding;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    qx::model::ChecksumTable table;
    try {
        table = qx::model::checksumTableFromJson(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const qx::RuntimeError&) {
        return 0;
    }
    for (int32_t code = qx::model::FirstCalculationCode; code <= qx::model::LastCalculationCode; ++code)
        if (!qx::model::checksumProblem(table.Definition(code)).empty()) finding("an unsound definition was accepted");
    try {
        if (qx::model::checksumTableFromJson(qx::model::checksumTableToJson(table)) != table)
            finding("the table's own text reads back to another table");
    } catch (const qx::RuntimeError&) {
        finding("the table's own text is refused");
    }
    return 0;
}
