// What the commands of qxfb that run sets through the runtime model share:
// a set read from its image or its text form, operand values, the clock and
// the checksum table as the command line gives them, and bytes written out
// as hexadecimal and as text.
#pragma once
#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "runtime_model/checksum_catalogue.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "runtime_model/wire_text.h"

namespace qx {
class clsProtocolSendSrv;
class clsProtocolScanSrv;
}  // namespace qx

namespace qx::cli {

// A capture may be large, but not without bound.
inline constexpr uintmax_t MaxCaptureBytes = uintmax_t{1} << 30;

// A regular file of at most limit bytes; anything else is refused with the
// reason in words.
std::optional<std::vector<uint8_t>> readInput(const std::string& path, uintmax_t limit, std::string& error);

// The set of a file that holds its image or its text form (JSON, first
// character "{"); null with the reason in error.
std::unique_ptr<clsProtocolSendSrv> loadSendSet(const std::string& path, std::string& error);
std::unique_ptr<clsProtocolScanSrv> loadScanSet(const std::string& path, std::string& error);

// The options that feed the model: --values, --clock, --crc16, --checksums.
struct ModelInputs {
    std::string values;
    std::string clock;
    std::string crc16 = "arc";
    // A checksum table as JSON ("qxfbcom2-checksum-table") or a project file,
    // whose table is taken.
    std::string checksums;
};
void addValuesAndClock(CLI::App& command, ModelInputs& inputs);
void addChecksumOptions(CLI::App& command, ModelInputs& inputs);

// What the options name, read; false with the reason in error.
bool readValuesAndClock(const ModelInputs& inputs, model::OperandValues& values, model::ModelClock& clock,
                        std::string& error);
bool readChecksumTable(const ModelInputs& inputs, model::ChecksumTable& table, std::string& error);

using model::hexLine;
using model::parseHex;
using model::textLine;
// "MI 12"
std::string operandName(int32_t type, int32_t address);
// The type and address of "MI 12", the type by its name as the operand
// picker shows it; nothing for another text.
std::optional<std::pair<int32_t, int32_t>> parseOperand(const std::string& name);
// What one received field put where: "MI 40 = -250; MI 41 = 2 decimal places".
std::string fieldText(const model::ReceivedField& field);

// Runs a command in a host of its own, with which the sets register their
// operands; a run-time error fails the command with its number and words.
int runInHost(const std::function<int()>& command);

}  // namespace qx::cli
