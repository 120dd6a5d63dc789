#include "model_inputs.h"

#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "command_line.h"
#include "inspect/text_form.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "platform/host/host_services.h"
#include "project/project_file.h"
#include "runtime_model/checksum_table_json.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

std::optional<std::vector<uint8_t>> readInput(const std::string& path, uintmax_t limit, std::string& error) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    if (!S_ISREG(info.st_mode)) {
        error = "cannot read " + path + ": not a regular file";
        return std::nullopt;
    }
    if (static_cast<uintmax_t>(info.st_size) > limit) {
        error = "cannot read " + path + ": " + std::to_string(info.st_size) + " bytes, more than the " +
                std::to_string(limit) + " this command reads";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    return bytes;
}

namespace {

// An image of 16-bit offsets is below 64 KB.
constexpr uintmax_t MaxImageBytes = 65536;
// A text form of a set is far below 16 MB.
constexpr uintmax_t MaxTextBytes = uintmax_t{16} << 20;

// A text form starts with "{" after any white space, whatever the file is
// called.
bool looksLikeTextForm(const std::vector<uint8_t>& bytes) {
    for (uint8_t byte : bytes) {
        if (byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n') continue;
        return byte == '{';
    }
    return false;
}

std::unique_ptr<clsProtocolSendSrv> importSet(std::string_view text, clsProtocolSendSrv*) {
    return textform::importSendSet(text);
}
std::unique_ptr<clsProtocolScanSrv> importSet(std::string_view text, clsProtocolScanSrv*) {
    return textform::importScanSet(text);
}

template <class Set>
std::unique_ptr<Set> readImageSet(const std::vector<uint8_t>& bytes, const std::string& path, const char* kind,
                                  std::string& error) {
    if (bytes.size() > MaxImageBytes) {
        error = "cannot read " + path + ": " + std::to_string(bytes.size()) + " bytes, more than the " +
                std::to_string(MaxImageBytes) + " this command reads";
        return nullptr;
    }
    host().ExtendedOperands = false;
    auto set = std::make_unique<Set>();
    try {
        set->BinaryData(bytes);
        return set;
    } catch (const RuntimeError& e) {
        error = path + " is not a " + kind + " image: " + toUtf8(e.Description()) + " (error " +
                std::to_string(e.Number()) + ")";
        return nullptr;
    }
}

template <class Set>
std::unique_ptr<Set> readTextFormSet(const std::vector<uint8_t>& bytes, const std::string& path, const char* kind,
                                     std::string& error) {
    const std::string text(bytes.begin(), bytes.end());
    const std::optional<textform::TextFormHeader> header = textform::peekHeader(text);
    const std::string wanted = std::string(kind) == "Send" ? "send" : "scan";
    if (header && header->Kind != wanted) {
        error = path + " is the text form of a " + (header->Kind == "send" ? "Send" : "Scan") + " set, not of a " +
                kind + " set";
        return nullptr;
    }
    // The text says which operands it was written with; it is read in a host
    // with the same setting.
    host().ExtendedOperands = header && header->ImageVersion == 1;
    try {
        return importSet(text, static_cast<Set*>(nullptr));
    } catch (const RuntimeError& e) {
        error = e.Number() == err::InvalidFileFormat
                    ? path + ": " + toUtf8(e.Description())
                    : path + ": the " + kind + " set has no image: " + toUtf8(e.Description()) + " (error " +
                          std::to_string(e.Number()) + ")";
        return nullptr;
    }
}

// The set of a file that holds its image or its text form. An image may
// begin with white space and "{" too: one that the text form refuses is
// still read as an image before the text's error is reported.
template <class Set>
std::unique_ptr<Set> loadSet(const std::string& path, const char* kind, std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, MaxTextBytes, error);
    if (!bytes) return nullptr;
    if (!looksLikeTextForm(*bytes)) return readImageSet<Set>(*bytes, path, kind, error);
    std::unique_ptr<Set> set = readTextFormSet<Set>(*bytes, path, kind, error);
    if (set) return set;
    std::string imageError;
    return readImageSet<Set>(*bytes, path, kind, imageError);
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::optional<int64_t> integer(const std::string& text) {
    if (text.empty()) return std::nullopt;
    size_t used = 0;
    try {
        const long long value = std::stoll(text, &used, 0);
        if (used != text.size()) return std::nullopt;
        return value;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// "MI 12": the type by its name, the address 0 to 65535; nothing with the
// reason in why.
std::optional<std::pair<int32_t, int32_t>> readOperand(const std::string& text, std::string& why) {
    // The names as the host of the moment gives them.
    std::map<std::string, int32_t> types;
    const clsOperandTypeNames names;
    for (int32_t type = 1; type < 128; ++type) {
        const std::string name = toUtf8(names.GetName(type));
        if (!name.empty() && !types.count(name)) types[name] = type;
    }
    std::istringstream words(text);
    std::string name, address, rest;
    words >> name >> address >> rest;
    const auto type = types.find(name);
    if (type == types.end()) {
        why = "unknown operand type \"" + name + "\"";
        return std::nullopt;
    }
    const std::optional<int64_t> at = integer(address);
    if (!at || *at < 0 || *at > 0xFFFF || !rest.empty()) {
        why = "an address of 0 to 65535 expected";
        return std::nullopt;
    }
    return std::pair{type->second, static_cast<int32_t>(*at)};
}

// "MI 12 = 1234" lines; the type by its name, as the operand picker shows it.
bool parseValues(const std::string& path, model::OperandValues& values, std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, MaxImageBytes * 16, error);
    if (!bytes) return false;
    std::istringstream in(std::string(bytes->begin(), bytes->end()));
    int lineNumber = 0;
    for (std::string line; std::getline(in, line);) {
        ++lineNumber;
        line = trimmed(line.substr(0, line.find('#')));
        if (line.empty()) continue;
        const auto bad = [&](const std::string& why) {
            error = path + " line " + std::to_string(lineNumber) + ": " + why;
            return false;
        };
        const size_t equals = line.find('=');
        if (equals == std::string::npos) return bad("\"TYPE ADDRESS = VALUE\" expected");
        std::string why;
        const std::optional<std::pair<int32_t, int32_t>> operand = readOperand(line.substr(0, equals), why);
        if (!operand) return bad(why);
        const std::optional<int64_t> value = integer(trimmed(line.substr(equals + 1)));
        if (!value) return bad("a whole number expected after \"=\"");
        values.Set(operand->first, operand->second, *value);
    }
    return true;
}

// Days since 1970-01-01 of a civil date (proleptic Gregorian).
int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

bool parseClock(const std::string& text, model::ModelClock& clock, std::string& error) {
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%c", &y, &mo, &d, &h, &mi, &s, &tail) != 6 || mo < 1 ||
        mo > 12 || d < 1 || d > 31 || h > 23 || mi > 59 || s > 59 || h < 0 || mi < 0 || s < 0) {
        error = "--clock needs \"YYYY-MM-DD HH:MM:SS\", not \"" + text + "\"";
        return false;
    }
    clock = {y, mo, d, static_cast<int32_t>(((daysFromCivil(y, mo, d) % 7) + 11) % 7), h, mi, s};
    return true;
}

}  // namespace

std::string operandName(int32_t type, int32_t address) {
    return toUtf8(clsOperandTypeNames().GetName(type)) + " " + std::to_string(address);
}

std::optional<std::pair<int32_t, int32_t>> parseOperand(const std::string& name) {
    std::string why;
    return readOperand(name, why);
}

std::string fieldText(const model::ReceivedField& field) {
    std::string text;
    for (size_t i = 0; i < field.Values.size(); ++i)
        text += (i ? ", " : "") + operandName(field.OperandType, field.OperandAddress + static_cast<int32_t>(i)) +
                " = " + std::to_string(field.Values[i]);
    if (field.HasDecimalPlaces)
        text += "; " + operandName(field.DecimalPointType, field.DecimalPointAddress) + " = " +
                std::to_string(field.DecimalPlaces) + " decimal places";
    return text;
}

int runInHost(const std::function<int()>& command) {
    ScopedHostContext host;
    try {
        return command();
    } catch (const RuntimeError& e) {
        return failure("run-time error " + std::to_string(e.Number()) + ": " + toUtf8(e.Description()));
    }
}

std::unique_ptr<clsProtocolSendSrv> loadSendSet(const std::string& path, std::string& error) {
    return loadSet<clsProtocolSendSrv>(path, "Send", error);
}
std::unique_ptr<clsProtocolScanSrv> loadScanSet(const std::string& path, std::string& error) {
    return loadSet<clsProtocolScanSrv>(path, "Scan", error);
}

void addValuesAndClock(CLI::App& command, ModelInputs& inputs) {
    command
        .add_option("--values", inputs.values,
                    "operand values, one a line: \"MI 12 = 1234\"; an operand not given is 0")
        ->type_name("FILE");
    command.add_option("--clock", inputs.clock, "the controller's clock, \"YYYY-MM-DD HH:MM:SS\"")
        ->type_name("TIME")
        ->default_str("2000-01-01 00:00:00");
}

void addChecksumOptions(CLI::App& command, ModelInputs& inputs) {
    CLI::Option* crc16 =
        command
            .add_option("--crc16", inputs.crc16,
                        "how the checksum code CRC-16 is read: arc (CRC-16/ARC) or modbus (CRC-16/MODBUS, low byte "
                        "first)")
            ->type_name("R")
            ->check(CLI::IsMember({"arc", "modbus"}))
            ->default_str("arc");
    command
        .add_option("--checksums", inputs.checksums,
                    "the checksum table: JSON as project export writes it (checksums.json), or a project file")
        ->type_name("FILE")
        ->excludes(crc16);
}

bool readValuesAndClock(const ModelInputs& inputs, model::OperandValues& values, model::ModelClock& clock,
                        std::string& error) {
    if (!inputs.values.empty() && !parseValues(inputs.values, values, error)) return false;
    if (!inputs.clock.empty() && !parseClock(inputs.clock, clock, error)) return false;
    return true;
}

bool readChecksumTable(const ModelInputs& inputs, model::ChecksumTable& table, std::string& error) {
    table = model::ChecksumTable::Default();
    if (inputs.crc16 == "modbus") {
        table.Definition(3, {"CRC-16/MODBUS", model::ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37,
                             /*LowByteFirst=*/true});
        return true;
    }
    if (inputs.checksums.empty()) return true;
    const std::optional<std::vector<uint8_t>> bytes = readInput(inputs.checksums, MaxTextBytes, error);
    if (!bytes) return false;
    static constexpr std::string_view sqlite("SQLite format 3\0", 16);
    try {
        if (bytes->size() >= sqlite.size() && std::equal(sqlite.begin(), sqlite.end(), bytes->begin()))
            table = loadProject(inputs.checksums).Settings.Checksums;
        else
            table = model::checksumTableFromJson(
                std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size()));
        return true;
    } catch (const RuntimeError& e) {
        error = toUtf8(e.Description());
        if (error.rfind("project file", 0) != 0) error = inputs.checksums + ": " + error;
        return false;
    }
}

}  // namespace qx::cli
