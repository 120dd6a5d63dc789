// The commands of qxfb that run a message set through the runtime model, with
// no component and no controller: preview (the wire bytes of a Send message),
// loopback (a Send set held against a Scan set) and decode (a capture of
// received bytes held against a Scan set). A set is given as its image or as
// its text form (JSON), whichever the file holds.
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <sstream>

#include "command_line.h"
#include "inspect/text_form.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "platform/host/host_services.h"
#include "runtime_model/checksum_catalogue.h"
#include "runtime_model/loopback.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

const char* const modelCommandsHelp =
    R"(  qxfb preview SEND [--message N] [--values FILE] [--clock TIME] [--crc16 R]
      Renders message N (default 1) of a Send image through the runtime
      model and prints its bytes in hexadecimal and as text, control
      characters named (<STX>, <CR>). Operand values come from FILE, one a
      line: "MI 12 = 1234" (type name, address, value; "#" starts a
      comment); an operand not given is 0. TIME is "YYYY-MM-DD HH:MM:SS"
      (default 2000-01-01 00:00:00).
  qxfb loopback SEND SCAN [--baud B] [--values FILE] [--clock TIME] [--crc16 R]
      Renders every message of the Send image and holds it against the Scan
      image: which Scan message takes each, and warnings for a message none
      or two take, an end character a stream or a binary text can carry, and
      a silence shorter than 1.5 characters at B baud (default 9600). Exit
      status 1 when anything is warned about.
  qxfb decode SCAN (CAPTURE | --hex BYTES) [--crc16 R]
      Cuts a capture of received bytes (a file, or hexadecimal digits) into
      frames by the Scan's terminator and tells, frame by frame, which
      message it is and what each field received, or why no message
      matched. Exit status 1 when a frame matched nothing.
      SEND and SCAN are images or their text forms (JSON, as export writes
      them); a file whose first byte other than white space is "{" is read
      as a text form. The checksum code "CRC-16" is read as CRC-16/ARC, or
      with --crc16 modbus as CRC-16/MODBUS, low byte first (Modbus RTU).
)";

namespace {

// An image of 16-bit offsets is below 64 KB; a capture may be large, but
// not without bound.
constexpr uintmax_t MaxImageBytes = 65536;
constexpr uintmax_t MaxCaptureBytes = uintmax_t{1} << 30;
// A text form of a set is far below 16 MB.
constexpr uintmax_t MaxTextBytes = uintmax_t{16} << 20;

// A regular file of at most limit bytes; anything else is refused with the
// reason in words.
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

// "MI 12 = 1234" lines; the type by its name, as the operand picker shows it.
bool parseValues(const std::string& path, model::OperandValues& values, std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, MaxImageBytes * 16, error);
    if (!bytes) return false;
    std::map<std::string, int32_t> types;
    const clsOperandTypeNames names;
    for (int32_t type = 1; type < 128; ++type) {
        const std::string name = toUtf8(names.GetName(type));
        if (!name.empty() && !types.count(name)) types[name] = type;
    }
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
        std::istringstream left(line.substr(0, equals));
        std::string name, address, rest;
        left >> name >> address >> rest;
        if (!types.count(name)) return bad("unknown operand type \"" + name + "\"");
        const std::optional<int64_t> at = integer(address);
        const std::optional<int64_t> value = integer(trimmed(line.substr(equals + 1)));
        if (!at || *at < 0 || *at > 0xFFFF || !rest.empty()) return bad("an address of 0 to 65535 expected");
        if (!value) return bad("a whole number expected after \"=\"");
        values.Set(types[name], static_cast<int32_t>(*at), *value);
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

std::optional<std::vector<uint8_t>> parseHex(const std::string& text) {
    std::vector<uint8_t> bytes;
    int high = -1;
    for (char c : text) {
        if (c == ' ' || c == ',' || c == ':' || c == '\t') continue;
        const int digit = std::isxdigit(static_cast<unsigned char>(c))
                              ? (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (std::toupper(c) - 'A' + 10))
                              : -1;
        if (digit < 0) return std::nullopt;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0) return std::nullopt;
    return bytes;
}

std::string hexLine(std::span<const uint8_t> bytes) {
    std::string text;
    char byte[4];
    for (uint8_t value : bytes) {
        std::snprintf(byte, sizeof byte, "%02X", value);
        text += (text.empty() ? "" : " ") + std::string(byte);
    }
    return text;
}

// Printable ASCII as it is, control characters by their names, other bytes
// as <hex>.
std::string textLine(std::span<const uint8_t> bytes) {
    static const char* const names[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                          "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                          "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};
    std::string text;
    char hex[8];
    for (uint8_t value : bytes) {
        if (value < 32) {
            text += "<" + std::string(names[value]) + ">";
        } else if (value < 127) {
            text += static_cast<char>(value);
        } else {
            std::snprintf(hex, sizeof hex, "<%02X>", value);
            text += hex;
        }
    }
    return text;
}

std::string operandName(int32_t type, int32_t address) {
    return toUtf8(clsOperandTypeNames().GetName(type)) + " " + std::to_string(address);
}

// The words of one command, as the command line gave them.
struct Words {
    std::vector<std::string> sets;  // the Send and Scan files, in their order
    std::string capture;
    std::string values;
    std::string clock;
    std::string hex;
    bool hexGiven = false;
    int32_t message = 1;
    int32_t baud = 9600;
    std::string crc16 = "arc";
};

// The model's checksum table, with "CRC-16" read as the command line says.
model::ChecksumTable checksumsOf(const Words& words) {
    model::ChecksumTable table = model::ChecksumTable::Default();
    if (words.crc16 == "modbus")
        table.Definition(3, {"CRC-16/MODBUS", model::ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37,
                             /*LowByteFirst=*/true});
    return table;
}

bool commonInputs(const Words& words, model::OperandValues& values, model::ModelClock& clock, std::string& error) {
    if (!words.values.empty() && !parseValues(words.values, values, error)) return false;
    if (!words.clock.empty() && !parseClock(words.clock, clock, error)) return false;
    return true;
}

int preview(const Words& words) {
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    if (!commonInputs(words, values, clock, error)) return failure(error);
    const int32_t message = words.message;
    const std::string& path = words.sets[0];
    const std::unique_ptr<clsProtocolSendSrv> loaded = loadSet<clsProtocolSendSrv>(path, "Send", error);
    if (!loaded) return failure(error);
    const clsProtocolSendSrv& set = *loaded;
    if (message > set.NumberOfMessages())
        return failure(path + " has " + std::to_string(set.NumberOfMessages()) + " messages, not " +
                       std::to_string(message));
    const model::RenderedMessage out = model::renderSendMessage(set, message, values, clock, checksumsOf(words));
    std::cout << "Message " << message << ": " << out.Bytes.size() << " bytes\n";
    std::cout << "  hex:  " << hexLine(out.Bytes) << "\n";
    std::cout << "  text: " << textLine(out.Bytes) << "\n";
    for (const std::wstring& note : out.Notes) std::cout << "  note: " << toUtf8(note) << "\n";
    return 0;
}

int loopbackCommand(const Words& words) {
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    if (!commonInputs(words, values, clock, error)) return failure(error);
    const std::unique_ptr<clsProtocolSendSrv> sendSet = loadSet<clsProtocolSendSrv>(words.sets[0], "Send", error);
    if (!sendSet) return failure(error);
    const std::unique_ptr<clsProtocolScanSrv> scanSet = loadSet<clsProtocolScanSrv>(words.sets[1], "Scan", error);
    if (!scanSet) return failure(error);
    const clsProtocolSendSrv& send = *sendSet;
    const clsProtocolScanSrv& scan = *scanSet;
    const int32_t baud = words.baud;
    const model::LoopbackReport report = model::loopback(send, scan, baud, values, clock, checksumsOf(words));
    for (const model::LoopbackLine& line : report.Lines) {
        std::cout << "Send message " << line.SendMessage << " (" << textLine(line.Bytes) << "): ";
        if (line.ScanMessages.empty()) std::cout << "no Scan message\n";
        for (size_t i = 0; i < line.ScanMessages.size(); ++i)
            std::cout << (i ? ", " : "Scan message ") << line.ScanMessages[i]
                      << (i + 1 == line.ScanMessages.size() ? "\n" : "");
        for (const std::wstring& why : line.WhyNot) std::cout << "  " << toUtf8(why) << "\n";
    }
    for (const std::wstring& warning : report.Warnings) std::cout << "warning: " << toUtf8(warning) << "\n";
    std::cout << (report.Clean() ? "Loopback clean\n" : "Loopback found problems\n");
    return report.Clean() ? 0 : 1;
}

int decode(const Words& words) {
    if (words.hexGiven == !words.capture.empty())
        return usageError("decode needs a Scan image and a capture file or --hex BYTES");
    std::string error;
    const std::unique_ptr<clsProtocolScanSrv> scanSet = loadSet<clsProtocolScanSrv>(words.sets[0], "Scan", error);
    if (!scanSet) return failure(error);
    const clsProtocolScanSrv& scan = *scanSet;
    std::vector<uint8_t> capture;
    if (words.hexGiven) {
        const std::optional<std::vector<uint8_t>> bytes = parseHex(words.hex);
        if (!bytes) return usageError("--hex needs pairs of hexadecimal digits");
        capture = *bytes;
    } else {
        const std::optional<std::vector<uint8_t>> bytes = readInput(words.capture, MaxCaptureBytes, error);
        if (!bytes) return failure(error);
        capture = *bytes;
    }
    const model::ChecksumTable table = checksumsOf(words);
    const model::ScanMatcher matcher(scan, table);
    size_t leftOver = 0, unmatched = 0;
    const std::vector<model::FrameSpan> frames = model::splitFrames(scan, capture, &leftOver);
    for (const model::FrameSpan& span : frames) {
        if (span.SkippedBefore) std::cout << span.SkippedBefore << " bytes before it belong to no frame\n";
        const std::span<const uint8_t> frame = std::span(capture).subspan(span.Offset, span.Length);
        const model::Recognition got = matcher.Recognize(frame);
        std::cout << "Frame at " << span.Offset << " (" << span.Length << " bytes): " << textLine(frame) << "\n";
        if (got.MessageNumber == 0) {
            ++unmatched;
            std::cout << "  no message\n";
            for (const std::wstring& why : got.WhyNot) std::cout << "  " << toUtf8(why) << "\n";
            continue;
        }
        std::cout << "  message " << got.MessageNumber << ", " << got.BytesReceived << " bytes received\n";
        for (const model::ReceivedField& field : got.Fields) {
            std::cout << "  field at position " << field.Position << ": ";
            for (size_t i = 0; i < field.Values.size(); ++i)
                std::cout << (i ? ", " : "")
                          << operandName(field.OperandType, field.OperandAddress + static_cast<int32_t>(i)) << " = "
                          << field.Values[i];
            if (field.HasDecimalPlaces)
                std::cout << "; " << operandName(field.DecimalPointType, field.DecimalPointAddress) << " = "
                          << field.DecimalPlaces << " decimal places";
            std::cout << "\n";
        }
    }
    if (leftOver) std::cout << leftOver << " bytes at the end make no complete frame\n";
    std::cout << frames.size() << " frames, " << frames.size() - unmatched << " recognised\n";
    return unmatched == 0 ? 0 : 1;
}

}  // namespace

// Runs a command in a host of its own, with which the sets register their
// operands.
int run(int (*command)(const Words&), const Words& words) {
    ScopedHostContext host;
    try {
        return command(words);
    } catch (const RuntimeError& e) {
        return failure("run-time error " + std::to_string(e.Number()) + ": " + toUtf8(e.Description()));
    }
}

void addValuesAndClock(CLI::App& command, Words& words) {
    command
        .add_option("--values", words.values, "operand values, one a line: \"MI 12 = 1234\"; an operand not given is 0")
        ->type_name("FILE");
    command.add_option("--clock", words.clock, "the controller's clock, \"YYYY-MM-DD HH:MM:SS\"")
        ->type_name("TIME")
        ->default_str("2000-01-01 00:00:00");
}

void addCrc16(CLI::App& command, Words& words) {
    command
        .add_option("--crc16", words.crc16,
                    "how the checksum code CRC-16 is read: arc (CRC-16/ARC) or modbus (CRC-16/MODBUS, low byte first)")
        ->type_name("R")
        ->check(CLI::IsMember({"arc", "modbus"}))
        ->default_str("arc");
}

void addModelCommands(CLI::App& qxfb, Command& chosen) {
    auto previewed = std::make_shared<Words>();
    CLI::App* previewCommand = addCommand(qxfb, "preview", "Renders a Send message's bytes through the runtime model",
                                          "preview needs one Send image");
    auto previewSend = std::make_shared<std::string>();
    previewCommand->add_option("SEND", *previewSend, "the Send set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    previewCommand->add_option("--message", previewed->message, "the message to render")
        ->type_name("N")
        ->check(wholeNumber(1, 255))
        ->default_str("1");
    addValuesAndClock(*previewCommand, *previewed);
    addCrc16(*previewCommand, *previewed);
    previewCommand->callback([&chosen, previewed, previewSend] {
        previewed->sets = {*previewSend};
        chosen = [previewed] { return run(preview, *previewed); };
    });

    auto looped = std::make_shared<Words>();
    CLI::App* loopbackCommand_ = addCommand(qxfb, "loopback", "Holds every message of a Send set against a Scan set",
                                            "loopback needs a Send image and a Scan image");
    auto send = std::make_shared<std::string>();
    auto scan = std::make_shared<std::string>();
    loopbackCommand_->add_option("SEND", *send, "the Send set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    loopbackCommand_->add_option("SCAN", *scan, "the Scan set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    loopbackCommand_->add_option("--baud", looped->baud, "the line's rate, for the silence between messages")
        ->type_name("B")
        ->check(wholeNumber(50, 10'000'000))
        ->default_str("9600");
    addValuesAndClock(*loopbackCommand_, *looped);
    addCrc16(*loopbackCommand_, *looped);
    loopbackCommand_->callback([&chosen, looped, send, scan] {
        looped->sets = {*send, *scan};
        chosen = [looped] { return run(loopbackCommand, *looped); };
    });

    auto decoded = std::make_shared<Words>();
    CLI::App* decodeCommand = addCommand(qxfb, "decode", "Tells which Scan message each received frame is",
                                         "decode needs a Scan image and a capture file or --hex BYTES");
    auto decodeScan = std::make_shared<std::string>();
    decodeCommand->add_option("SCAN", *decodeScan, "the Scan set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    CLI::Option* capture =
        decodeCommand->add_option("CAPTURE", decoded->capture, "a file of received bytes")->type_name("FILE");
    decodeCommand->add_option("--hex", decoded->hex, "the received bytes in hexadecimal digits instead of a file")
        ->type_name("BYTES")
        ->excludes(capture);
    addCrc16(*decodeCommand, *decoded);
    decodeCommand->callback([&chosen, decoded, decodeScan, decodeCommand] {
        decoded->sets = {*decodeScan};
        decoded->hexGiven = decodeCommand->count("--hex") != 0;
        chosen = [decoded] { return run(decode, *decoded); };
    });
}

}  // namespace qx::cli
